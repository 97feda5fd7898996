#include <sys/stat.h>

#include "base/file_identity.h"

namespace sw::base {

bool SameFile(const std::filesystem::path& first, const std::filesystem::path& second) {
  struct stat a {};
  struct stat b {};
  if (::stat(first.c_str(), &a) != 0 || ::stat(second.c_str(), &b) != 0) return false;
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

std::optional<FileKey> KeyOfFile(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileKey{static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

}  // namespace sw::base
