#pragma once
// Windows system colours as the controls store them: the top bit set and the colour's index below it
// (0x80000005 is COLOR_WINDOW). A view draws such a value in the platform's own colour for that purpose,
// so a control keeps the look the user's theme gives it.
#include <cstdint>

namespace sw::base {

inline constexpr std::uint32_t kSystemWindowBackground = 0x80000005;

}  // namespace sw::base
