#include <windows.h>

#include "base/file_identity.h"

namespace sw::base {
namespace {

struct FileIdentity {
  DWORD volume = 0;
  DWORD indexHigh = 0;
  DWORD indexLow = 0;
};

bool Identify(const std::filesystem::path& path, FileIdentity& identity) {
  // No access rights are asked for, so a file another program holds open can still be identified.
  HANDLE file = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION information{};
  const bool known = GetFileInformationByHandle(file, &information) != 0;
  CloseHandle(file);
  if (!known) return false;
  identity = {information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
  return true;
}

}  // namespace

bool SameFile(const std::filesystem::path& first, const std::filesystem::path& second) {
  FileIdentity a;
  FileIdentity b;
  if (!Identify(first, a) || !Identify(second, b)) return false;
  return a.volume == b.volume && a.indexHigh == b.indexHigh && a.indexLow == b.indexLow;
}

std::optional<FileKey> KeyOfFile(const std::filesystem::path& path) {
  FileIdentity identity;
  if (!Identify(path, identity)) return std::nullopt;
  return FileKey{identity.volume, (static_cast<std::uint64_t>(identity.indexHigh) << 32) | identity.indexLow};
}

}  // namespace sw::base
