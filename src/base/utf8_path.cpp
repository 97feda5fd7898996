#include "base/utf8_path.h"

#include <string>

namespace sw::base {

std::filesystem::path PathFromUtf8(std::string_view utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace sw::base
