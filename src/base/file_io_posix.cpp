#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "base/file_io.h"
#include "base/own_temp_files.h"

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

namespace {

std::error_code WriteAll(int fd, std::string_view bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return {errno, std::generic_category()};
    }
    done += static_cast<std::size_t>(n);
  }
  return {};
}

// A temporary file this process made for itself is never kept, so no crash can cost the user anything
// there: it is written in place, neither flushed nor renamed. A single-sheet run saves its working
// file once per page.
std::error_code WriteOwnTempFile(const std::filesystem::path& path, std::string_view bytes) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644);
  if (fd < 0) return {errno, std::generic_category()};
  std::error_code result = WriteAll(fd, bytes);
  if (::close(fd) != 0 && !result) result = {errno, std::generic_category()};
  if (result) ::unlink(path.c_str());
  return result;
}

}  // namespace

std::error_code WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  if (IsThisProcessTempFile(path)) return WriteOwnTempFile(path, bytes);
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
  std::error_code result = WriteAll(fd, bytes);
  if (!result && ::fsync(fd) != 0) result = {errno, std::generic_category()};
  if (::close(fd) != 0 && !result) result = {errno, std::generic_category()};
  if (!result && ::rename(temp.c_str(), path.c_str()) != 0) result = {errno, std::generic_category()};
  if (result) ::unlink(temp.c_str());
  return result;
}

}  // namespace sw::base
