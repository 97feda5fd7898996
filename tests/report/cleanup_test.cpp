#include "report/cleanup.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "report/add_grid_row.h"
#include "table_rows.h"

namespace sw::report {
namespace {

ReportTable TableOf(const std::vector<std::vector<std::string_view>>& rows) {
  ReportTable table;
  table.SetCols(3);
  for (const auto& fields : rows) AddGridRow(table, fields, table.Rows(), kDefaultBack);
  return table;
}

TEST(Cleanup, HeadingRowAloneIsLeftAsItIs) {
  ReportTable table;
  table.SetCols(2);
  table.SetText(0, 0, "  ");
  table.SetText(0, 1, "x/2");
  CleanupEmptyRows(table);
  CleanupSlashTwo(table);
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(table.Text(0, 1), "x/2");
}

TEST(Cleanup, EmptyRowsGoWhateverTheirColourOrPictures) {
  ReportTable table = TableOf({{"", "a"}, {""}, {"", "", "b"}, {""}, {"Plac"}, {""}});
  table.SetRowBackColour(2, 0, 2, kTitleGreen);
  table.SetPicture(4, 1, CellPicture::kPageBreak);
  table.SetRowBackColour(5, 0, 2, kTitleGreen);
  table.SetText(6, 1, "   ");  // blanks only
  table.SetPicture(3, 0, CellPicture::kBlank);
  CleanupEmptyRows(table);
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"|a|", "||b", "Plac||"}));
  // Colours and pictures travel with their rows.
  EXPECT_EQ(table.ClassOf(3), RowClass::kPlacementHead);
  EXPECT_EQ(table.Picture(2, 0), CellPicture::kBlank);
}

struct SlashTwoCase {
  std::string before;
  std::string after;
  friend void PrintTo(const SlashTwoCase& c, std::ostream* out) { *out << c.before; }
};

class SlashTwo : public ::testing::TestWithParam<SlashTwoCase> {};

TEST_P(SlashTwo, RemovesOneTrailingSlashTwoOutsideColumnZero) {
  ReportTable table;
  table.SetCols(3);
  table.SetRows(2);
  table.SetText(1, 0, GetParam().before);
  table.SetText(1, 2, GetParam().before);
  CleanupSlashTwo(table);
  EXPECT_EQ(table.Text(1, 0), GetParam().before);
  EXPECT_EQ(table.Text(1, 2), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Cleanup, SlashTwo,
                         ::testing::Values(SlashTwoCase{"12/2", "12"}, SlashTwoCase{"/2", ""},
                                           SlashTwoCase{"A/2/2", "A/2"}, SlashTwoCase{"A /2", "A "},
                                           SlashTwoCase{"a/2b", "a/2b"}, SlashTwoCase{"/2 ", "/2 "},
                                           SlashTwoCase{"2", "2"}, SlashTwoCase{"/", "/"},
                                           SlashTwoCase{"K\u00e4llare/2", "K\u00e4llare"}));

}  // namespace
}  // namespace sw::report
