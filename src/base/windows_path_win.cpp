#include "base/windows_path.h"

namespace sw::base {

// Windows itself separates at "\", ignores case and knows its drives: the text is the path.
std::filesystem::path WindowsPathResolver::Resolve(std::string_view windowsPath) const {
  const std::u8string utf8(windowsPath.begin(), windowsPath.end());
  return std::filesystem::path(utf8);
}

}  // namespace sw::base
