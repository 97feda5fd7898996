#include <windows.h>

#include "cadenv/file_lock.h"

namespace sw::cadenv {

bool ExclusiveFileLock::Open(const std::filesystem::path& lockFile) {
  const HANDLE file = ::CreateFileW(lockFile.wstring().c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  handle_ = reinterpret_cast<std::intptr_t>(file);
  return true;
}

bool ExclusiveFileLock::TryLock() {
  OVERLAPPED whole{};
  return ::LockFileEx(reinterpret_cast<HANDLE>(handle_), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0,
                      MAXDWORD, MAXDWORD, &whole) != FALSE;
}

ExclusiveFileLock::~ExclusiveFileLock() {
  if (handle_ == -1) return;
  const HANDLE file = reinterpret_cast<HANDLE>(handle_);
  if (held_) {
    OVERLAPPED whole{};
    ::UnlockFileEx(file, 0, MAXDWORD, MAXDWORD, &whole);
  }
  ::CloseHandle(file);
}

}  // namespace sw::cadenv
