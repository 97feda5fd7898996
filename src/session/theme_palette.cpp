#include "session/theme_palette.h"

#include <algorithm>
#include <cstdlib>

namespace sw::session {
namespace {

constexpr std::int32_t Packed(int red, int green, int blue) {
  return static_cast<std::int32_t>(red | (green << 8) | (blue << 16));
}

constexpr std::int32_t kBlack = Packed(0, 0, 0);
constexpr std::int32_t kWhite = Packed(0xFF, 0xFF, 0xFF);

}  // namespace

ThemePalette PaletteOf(const ThemeEntry& theme) {
  switch (theme.number) {
    case 0:  // Windows' classic grey buttons and navy selection
      return {theme.colour, theme.colour, Packed(0x0A, 0x24, 0x6A), kWhite};
    case 1:  // Office XP: pale grey bars, white menus, a lavender item under the pointer
      return {theme.colour, Packed(0xFC, 0xFC, 0xF9), Packed(0xB6, 0xBD, 0xD2), kBlack};
    case 2:  // Office 2003: deep blue bars over light blue, orange items
      return {theme.colour, Packed(0xDD, 0xEC, 0xFE), Packed(0xFF, 0xA5, 0x4F), kBlack};
    case 3:  // Windows XP: beige bars and the blue of its title bars for the selection
      return {theme.colour, Packed(0xF4, 0xF3, 0xEE), Packed(0x31, 0x6A, 0xC5), kWhite};
    case 4:  // Visual Studio 2005: silver-white bars over a warm grey, pale blue items
      return {theme.colour, Packed(0xD9, 0xD6, 0xC9), Packed(0xC1, 0xD2, 0xEE), kBlack};
    default:  // Office 2007: the ribbon's light blue and its amber items
      return {theme.colour, Packed(0xE4, 0xEF, 0xFD), Packed(0xFF, 0xE0, 0x7A), kBlack};
  }
}

int ColourDistance(std::int32_t first, std::int32_t second) {
  int largest = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    largest = std::max(largest, std::abs(((first >> shift) & 0xFF) - ((second >> shift) & 0xFF)));
  }
  return largest;
}

int PaletteDistance(const ThemePalette& first, const ThemePalette& second) {
  return std::max({ColourDistance(first.face, second.face), ColourDistance(first.button, second.button),
                   ColourDistance(first.highlight, second.highlight)});
}

}  // namespace sw::session
