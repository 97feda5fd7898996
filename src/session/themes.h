#pragma once
// The window's six visual themes ("Utseende"): the command that chooses each, the number stored as
// "Theme", and the command bars' background colour of that theme as a packed Windows colour value
// (0x00BBGGRR). The window's frames, field labels and the about box take that colour.
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "settings/settings.h"

namespace sw::session {

enum class ThemeStyle { kFlat, kClassic };  // how the widgets are drawn: a modern look or Windows 95's

struct ThemeEntry {
  int commandId;
  int number;  // the value stored as "Theme"
  std::string_view caption;
  std::int32_t colour;  // 0x00BBGGRR
  ThemeStyle style;
};

// In the order the menu and the "Utseende" toolbar list them (130, 131, 132, 133, 143, 135).
const std::array<ThemeEntry, 6>& Themes();

std::optional<ThemeEntry> ThemeByCommand(int commandId);
std::optional<ThemeEntry> ThemeByNumber(int number);

// The theme a start shows: "Theme" (default "2") as a whole number; above 5 it becomes 2, so a start
// never comes up in Office 2007's look even though choosing it stores "6".
int StartTheme(settings::Settings& settings);

// The theme a stored number stands for; a number no command chooses looks like theme 2.
ThemeEntry ThemeOrDefault(int number);

}  // namespace sw::session
