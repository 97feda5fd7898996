#pragma once
// The colours each look paints its window with, after the products whose toolbars and menus its name
// recalls: the command-bar face, the buttons and menus drawn on it, and how a chosen item stands out.
// Colours are packed as Windows keeps them (0x00BBGGRR), like the themes' command-bar colour.
#include <cstdint>

#include "session/themes.h"

namespace sw::session {

struct ThemePalette {
  std::int32_t face;           // the command bars, frames and labels: the theme's own colour
  std::int32_t button;         // buttons and the menu's background
  std::int32_t highlight;      // the chosen row, the item under the pointer
  std::int32_t highlightText;  // text on the highlight
};

ThemePalette PaletteOf(const ThemeEntry& theme);

// How far apart two colours look: the largest difference of red, green or blue.
int ColourDistance(std::int32_t first, std::int32_t second);

// How far apart two palettes look: the largest distance of face, button or highlight.
int PaletteDistance(const ThemePalette& first, const ThemePalette& second);

}  // namespace sw::session
