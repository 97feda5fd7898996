#include "templates/cell_reference.h"

#include <gtest/gtest.h>

namespace sw::templates {
namespace {

TEST(CellReferenceTest, ColumnLettersAndRowNumber) {
  struct Case {
    const char* text;
    int row;
    int col;
  };
  for (const auto& c : std::vector<Case>{
           {"A1", 1, 1},
           {"ab12", 12, 28},
           {"ZZ9", 9, 702},
           {"AZ3", 3, 52},
           {"c7", 7, 3},
           {"Z32767", 32767, 26},
           {"B3 ", 3, 2},
           {"!1", 1, -31},
           {" 1", 1, -32},
           {"A 1", 1, 26 - 32},   // two characters: ("A" − 64) × 26 + (" " − 64)
           {"é1", 1, 0xC9 - 64},  // counted by its upper-cased Windows-1252 code
           // Rejected forms: the first digit must be the 2nd or 3rd character, the rest a row number.
           {"ABC1", -1, -1},
           {"1A", -1, -1},
           {"A", -1, -1},
           {"", -1, -1},
           {"A1B", -1, -1},
           {"A32768", -1, -1},
           {"A-1", 1, 26 - 19},
       }) {
    const auto reference = ParseCellReference(c.text);
    EXPECT_EQ(reference.row, c.row) << c.text;
    EXPECT_EQ(reference.col, c.col) << c.text;
  }
  EXPECT_TRUE(ParseCellReference("B2").IsValid());
  EXPECT_FALSE(ParseCellReference("A0").IsValid());
  EXPECT_FALSE(ParseCellReference("!1").IsValid());
}

}  // namespace
}  // namespace sw::templates
