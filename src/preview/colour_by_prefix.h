#pragma once
// Which controls of a window take the theme's background colour, and which colour that is. The kind of
// a control is read from the first three letters of its name, as the program names its controls
// (lblTitle, cmdOK, txtName): buttons, text boxes, pictures, pickers, grids and the like keep their own
// colours, labels, frames and check boxes take the theme's.
#include <cstdint>
#include <optional>
#include <string_view>

namespace sw::preview {

// The prefixes of the control kinds that keep their colours, lower case.
inline constexpr std::string_view kUncolouredPrefixes[] = {"cmd", "sli", "txt", "img", "lin", "cbo", "com",
                                                           "fg_", "sta", "mnu", "fgf", "fgs", "fgt", "fgd",
                                                           "tim", "sys", "tra", "pop", "tab"};

// Whether the control named `name` takes the colour: its first three characters, lower-cased, are none
// of the prefixes above. A shorter name is compared as it is, so it never matches and is coloured.
bool TakesThemeColour(std::string_view name);

// The theme colour (a packed 0x00BBGGRR value) shifted by `offset` as one integer, not per channel.
// Nothing when the 32-bit sum overflows or leaves the range of colours (0 to 0x00FFFFFF): the caller
// then colours nothing, so a window never ends up half recoloured.
std::optional<std::int32_t> ShiftedThemeColour(std::int32_t themeColour, std::int32_t offset);

}  // namespace sw::preview
