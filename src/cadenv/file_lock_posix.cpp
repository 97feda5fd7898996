#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "cadenv/file_lock.h"

namespace sw::cadenv {

bool ExclusiveFileLock::Open(const std::filesystem::path& lockFile) {
  const int fd = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  handle_ = fd;
  return true;
}

bool ExclusiveFileLock::TryLock() {
  int status;
  do {
    status = ::flock(static_cast<int>(handle_), LOCK_EX | LOCK_NB);
  } while (status != 0 && errno == EINTR);
  return status == 0;
}

ExclusiveFileLock::~ExclusiveFileLock() {
  // Closing the descriptor releases the lock.
  if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

}  // namespace sw::cadenv
