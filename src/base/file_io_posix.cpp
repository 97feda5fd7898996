#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "base/file_io.h"
#include "base/own_temp_files.h"

namespace sw::base {

std::error_code WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  static std::atomic<unsigned> serial{0};
  std::filesystem::path temp;
  int fd = -1;
  // A file of that name can only be left from an earlier process of the same id: take the next one.
  for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
    temp = path.parent_path() / (path.filename().string() + OwnTempSuffix(++serial));
    fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0 && errno != EEXIST) break;
  }
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
