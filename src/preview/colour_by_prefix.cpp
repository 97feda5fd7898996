#include "preview/colour_by_prefix.h"

#include <algorithm>
#include <limits>
#include <string>

namespace sw::preview {

bool TakesThemeColour(std::string_view name) {
  std::string prefix(name.substr(0, 3));
  std::transform(prefix.begin(), prefix.end(), prefix.begin(),
                 [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c); });
  return std::find(std::begin(kUncolouredPrefixes), std::end(kUncolouredPrefixes), prefix) ==
         std::end(kUncolouredPrefixes);
}

std::optional<std::int32_t> ShiftedThemeColour(std::int32_t themeColour, std::int32_t offset) {
  const std::int64_t sum = std::int64_t{themeColour} + offset;
  if (sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;  // the 32-bit addition overflows
  }
  if (sum < 0 || sum > 0x00FFFFFF) return std::nullopt;
  return static_cast<std::int32_t>(sum);
}

}  // namespace sw::preview
