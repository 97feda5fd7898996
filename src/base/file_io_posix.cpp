#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/file_io.h"
#include "base/file_io_platform.h"

namespace sw::base {
namespace {

std::error_code LastError() {
  return {errno, std::generic_category()};
}

std::error_code NotARegularFile(const struct stat& info) {
  return std::make_error_code(S_ISDIR(info.st_mode) ? std::errc::is_a_directory
                                                    : std::errc::invalid_argument);
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Get() const { return fd_; }

 private:
  int fd_;
};

std::optional<std::string> Fail(std::error_code code, std::error_code* error) {
  if (error) *error = code;
  return std::nullopt;
}

}  // namespace

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::error_code* error) {
  // A pipe named where a file is expected would block the open and every read until a writer came,
  // so the kind of file is checked before opening, the open does not wait, and the kind is checked
  // again on the open descriptor in case the name was swapped in between.
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return Fail(LastError(), error);
  if (!S_ISREG(info.st_mode)) return Fail(NotARegularFile(info), error);
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (file.Get() < 0) return Fail(LastError(), error);
  if (::fstat(file.Get(), &info) != 0) return Fail(LastError(), error);
  if (!S_ISREG(info.st_mode)) return Fail(NotARegularFile(info), error);
  std::string bytes;
  bytes.reserve(static_cast<std::size_t>(info.st_size));
  char chunk[65536];
  for (;;) {
    const ssize_t n = ::read(file.Get(), chunk, sizeof chunk);
    if (n == 0) break;
    if (n < 0) {
      if (errno == EINTR) continue;
      return Fail(LastError(), error);
    }
    bytes.append(chunk, static_cast<std::size_t>(n));
  }
  return bytes;
}

namespace platform_file {

Opened OpenForWriting(const std::filesystem::path& path, Creation creation) {
  const int flags = creation == Creation::kNewOnly ? O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC
                                                   : O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
  const int fd = ::open(path.c_str(), flags, 0644);
  if (fd < 0) {
    const int error = errno;
    return {.error = {error, std::generic_category()}, .nameTaken = error == EEXIST};
  }
  return {.file = fd};
}

std::error_code WriteAll(Handle file, std::string_view bytes) {
  const int fd = static_cast<int>(file);
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return LastError();
    }
    done += static_cast<std::size_t>(n);
  }
  return {};
}

std::error_code SetLength(Handle file, std::uint64_t size) {
  while (::ftruncate(static_cast<int>(file), static_cast<off_t>(size)) != 0) {
    if (errno != EINTR) return LastError();
  }
  return {};
}

std::error_code FlushToDisk(Handle file) {
  return ::fsync(static_cast<int>(file)) == 0 ? std::error_code() : LastError();
}

std::error_code Close(Handle file) {
  return ::close(static_cast<int>(file)) == 0 ? std::error_code() : LastError();
}

std::error_code RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

void Remove(const std::filesystem::path& path) {
  ::unlink(path.c_str());
}

}  // namespace platform_file

}  // namespace sw::base
