#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "cadenv/file_lock.h"

namespace sw::cadenv {

ExclusiveFileLock::ExclusiveFileLock(const std::filesystem::path& lockFile) {
  const int fd = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) return;
  handle_ = fd;
  int status;
  do {
    status = ::flock(fd, LOCK_EX);
  } while (status != 0 && errno == EINTR);
  held_ = status == 0;
}

ExclusiveFileLock::~ExclusiveFileLock() {
  // Closing the descriptor releases the lock.
  if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

}  // namespace sw::cadenv
