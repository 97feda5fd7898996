#pragma once
// Windows colour values (0x00BBGGRR) the preview uses to mark rows. A mark reset leaves the system
// window colour (base::kSystemWindowBackground).
#include <cstdint>

namespace sw::report {

using Colour = std::uint32_t;

inline constexpr Colour kDefaultBack = 0x00000000;      // the grid's own background
inline constexpr Colour kTitleGreen = 0x00C0FFC0;       // placement head or manual page break
inline constexpr Colour kPageBreakYellow = 0x00C0FFFF;  // page-break mark

}  // namespace sw::report
