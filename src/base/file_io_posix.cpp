#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <random>

#include "base/file_io.h"

namespace sw::base {

std::error_code WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  std::random_device random;
  const auto temp = path.parent_path() / (path.filename().string() + ".tmp" + std::to_string(getpid()) + "-" +
                                          std::to_string(random()));
  const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) return {errno, std::generic_category()};
  std::error_code result;
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      result = {errno, std::generic_category()};
      break;
    }
    done += static_cast<std::size_t>(n);
  }
  if (!result && ::fsync(fd) != 0) result = {errno, std::generic_category()};
  if (::close(fd) != 0 && !result) result = {errno, std::generic_category()};
  if (!result && ::rename(temp.c_str(), path.c_str()) != 0) result = {errno, std::generic_category()};
  if (result) ::unlink(temp.c_str());
  return result;
}

}  // namespace sw::base
