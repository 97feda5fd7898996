// The six looks each paint the window their own way: no two of them could be taken for each other.
#include "session/theme_palette.h"

#include <gtest/gtest.h>

namespace sw::session {
namespace {

TEST(ThemePaletteTest, TheSixLooksDifferPairwiseByAVisibleAmount) {
  constexpr int kVisible = 40;  // of 255 in red, green or blue
  const auto& themes = Themes();
  for (std::size_t i = 0; i < themes.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_GE(PaletteDistance(PaletteOf(themes[i]), PaletteOf(themes[j])), kVisible)
          << themes[i].caption << " / " << themes[j].caption;
    }
  }
}

TEST(ThemePaletteTest, ThePairsOfLikeNamesDifferInTheirOwnColourToo) {
  // The window's frames and labels take the face colour alone: that much must show by itself.
  const auto face = [](int number) { return ThemeByNumber(number)->colour; };
  EXPECT_GE(ColourDistance(face(3), face(4)), 20);  // Normal XP, Visual Studio 2005
  EXPECT_GE(ColourDistance(face(2), face(6)), 40);  // Office 2003, Office 2007
}

TEST(ThemePaletteTest, TheFaceIsTheThemesOwnColourAndTextStaysReadable) {
  for (const auto& theme : Themes()) {
    const ThemePalette colours = PaletteOf(theme);
    EXPECT_EQ(colours.face, theme.colour) << theme.caption;
    // Text on the highlight differs from it as black from white nearly does.
    EXPECT_GE(ColourDistance(colours.highlight, colours.highlightText), 110) << theme.caption;
  }
}

TEST(ThemePaletteTest, DistanceIsTheLargestChannelDifference) {
  EXPECT_EQ(ColourDistance(0x000000, 0xFFFFFF), 255);
  EXPECT_EQ(ColourDistance(0x102030, 0x102030), 0);
  EXPECT_EQ(ColourDistance(0x0000FF, 0x000010), 0xEF);  // red in the low byte
  EXPECT_EQ(ColourDistance(0x400000, 0x000000), 0x40);
}

}  // namespace
}  // namespace sw::session
