#include "preview/colour_by_prefix.h"

#include <gtest/gtest.h>

#include <limits>

namespace sw::preview {
namespace {

TEST(ColourByPrefix, LabelsAndFramesTakeTheColourButtonsTextBoxesAndPicturesKeepTheirs) {
  EXPECT_TRUE(TakesThemeColour("lblTitle"));
  EXPECT_TRUE(TakesThemeColour("fraOptions"));
  EXPECT_TRUE(TakesThemeColour("chkShowNoMore"));
  EXPECT_FALSE(TakesThemeColour("cmdOK"));
  EXPECT_FALSE(TakesThemeColour("txtName"));
  EXPECT_FALSE(TakesThemeColour("imgLogo"));
  EXPECT_FALSE(TakesThemeColour("fg_Grid"));
  EXPECT_FALSE(TakesThemeColour("tabOptions"));
}

TEST(ColourByPrefix, PrefixesMatchWhateverTheCaseAndShortNamesAreColoured) {
  EXPECT_FALSE(TakesThemeColour("CMDClose"));
  EXPECT_FALSE(TakesThemeColour("TxT"));
  EXPECT_TRUE(TakesThemeColour("cm"));
  EXPECT_TRUE(TakesThemeColour("tx"));
  EXPECT_TRUE(TakesThemeColour("L"));
}

TEST(ColourByPrefix, TheOffsetIsAddedToThePackedValueAsOneNumber) {
  EXPECT_EQ(ShiftedThemeColour(0x00F0F0F0, 0), 0x00F0F0F0);
  // A carry out of the red byte goes into green: the channels are not shifted one by one.
  EXPECT_EQ(ShiftedThemeColour(0x000000FF, 1), 0x00000100);
  EXPECT_EQ(ShiftedThemeColour(0x00D8E9EC, -0x10), 0x00D8E9DC);
}

TEST(ColourByPrefix, AnOverflowOrASumOutsideTheColoursGivesNoColour) {
  EXPECT_EQ(ShiftedThemeColour(std::numeric_limits<std::int32_t>::max(), 1), std::nullopt);
  EXPECT_EQ(ShiftedThemeColour(std::numeric_limits<std::int32_t>::min(), -1), std::nullopt);
  EXPECT_EQ(ShiftedThemeColour(0x00FFFFFF, 1), std::nullopt);
  EXPECT_EQ(ShiftedThemeColour(0, -1), std::nullopt);
}

}  // namespace
}  // namespace sw::preview
