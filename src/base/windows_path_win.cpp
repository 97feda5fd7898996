#include "base/windows_path.h"

namespace sw::base {

// Windows itself separates at "\", ignores case and knows its drives: the text is the path. Only a
// drive a folder stands in for (tests, trial runs with --drive) is replaced by that folder.
std::filesystem::path WindowsPathResolver::Resolve(std::string_view windowsPath) const {
  const std::u8string utf8(windowsPath.begin(), windowsPath.end());
  if (windowsPath.size() >= 2 && windowsPath[1] == ':') {
    char letter = windowsPath[0];
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    if (auto it = drives_.find(letter); it != drives_.end()) {
      const auto rest = utf8.find_first_not_of(u8"\\/", 2);
      if (rest == std::u8string::npos) return it->second;
      return it->second / std::filesystem::path(utf8.substr(rest));
    }
  }
  return std::filesystem::path(utf8);
}

// Windows finds names under any case itself: nothing is listed, nothing kept.
FolderListingCache::FolderListingCache() = default;
FolderListingCache::~FolderListingCache() = default;

}  // namespace sw::base
