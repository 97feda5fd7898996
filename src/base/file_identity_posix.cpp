#include <sys/stat.h>

#include "base/file_identity.h"

namespace sw::base {

bool SameFile(const std::filesystem::path& first, const std::filesystem::path& second) {
  struct stat a {};
  struct stat b {};
  if (::stat(first.c_str(), &a) != 0 || ::stat(second.c_str(), &b) != 0) return false;
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace sw::base
