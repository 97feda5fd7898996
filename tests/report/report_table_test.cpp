#include "report/report_table.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "base/system_colours.h"
#include "report/add_grid_row.h"
#include "table_rows.h"

namespace sw::report {
namespace {

TEST(ReportTable, NewTableHasOneColumnAndTheHeadingRowAndReadsDefaultsOutside) {
  ReportTable table;
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(table.Cols(), 1);
  for (auto [row, col] : {std::pair{0, 0}, {1, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
    EXPECT_EQ(table.Text(row, col), "");
    EXPECT_EQ(table.BackColour(row, col), kDefaultBack);
    EXPECT_EQ(table.Picture(row, col), CellPicture::kNone);
    EXPECT_FALSE(table.Checked(row, col).has_value());
  }
  table.SetText(5, 0, "ignored");
  table.SetRows(0);
  table.SetCols(-3);
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(table.Cols(), 1);
}

TEST(ReportTable, RowsGrowingPastAndShrinkingBelowLongRowLengthsKeepEveryCell) {
  ReportTable table;
  table.SetCols(5);
  table.SetRows(2);
  const std::string huge(70000, 'h');
  const std::string middle(300, 'm');
  const std::string_view cells[] = {"a", middle, "", huge, "e"};
  table.SetRowTexts(1, cells);
  EXPECT_EQ(table.Text(1, 0), "a");
  EXPECT_EQ(table.Text(1, 1), middle);
  EXPECT_EQ(table.Text(1, 2), "");
  EXPECT_EQ(table.Text(1, 3), huge);
  EXPECT_EQ(table.Text(1, 4), "e");
  table.SetText(1, 3, "kort");
  EXPECT_EQ(table.Text(1, 3), "kort");
  EXPECT_EQ(table.Text(1, 4), "e");
  table.SetText(1, 1, "m");
  EXPECT_EQ(table.Text(1, 1), "m");
  EXPECT_EQ(table.Text(1, 4), "e");
  table.MoveColumn(4, 0);
  EXPECT_EQ(table.Text(1, 0), "e");
  EXPECT_EQ(table.Text(1, 4), "kort");
  table.SetText(1, 2, huge);
  table.SetCols(3);
  EXPECT_EQ(table.Text(1, 2), huge);
  EXPECT_EQ(table.RowTexts(1).size(), 3U);
  EXPECT_FALSE(table.IsRowBlank(1));
  // A text taken from the table itself may be written back into it.
  table.SetText(1, 0, table.Text(1, 2));
  EXPECT_EQ(table.Text(1, 0), huge);
}

TEST(ReportTable, ManyRewritesAndRemovalsKeepEveryText) {
  ReportTable table;
  table.SetCols(2);
  for (int i = 0; i < 5000; ++i) {
    const std::string a = std::to_string(i) + std::string(300, 'a');
    const std::string_view fields[] = {a, "b"};
    AddGridRow(table, fields, table.Rows(), kDefaultBack);
  }
  for (int pass = 0; pass < 3; ++pass) {
    for (int row = 1; row < table.Rows(); ++row) {
      table.SetText(row, 1, std::string(400 + pass, 'c') + std::to_string(row));
    }
  }
  for (int row = table.Rows() - 1; row >= 1; row -= 2) table.RemoveRow(row);
  ASSERT_EQ(table.Rows(), 2501);
  EXPECT_EQ(table.Text(1, 0), "0" + std::string(300, 'a'));
  EXPECT_EQ(table.Text(2500, 0), "4998" + std::string(300, 'a'));
  EXPECT_EQ(table.Text(2500, 1), std::string(402, 'c') + "4999");
}

TEST(ReportTable, ColoursCoverTheirRunAndLaterColumnsStartDefault) {
  ReportTable table;
  table.SetCols(3);
  table.SetRows(2);
  table.SetRowBackColour(1, 0, 2, kTitleGreen);
  table.SetBackColour(1, 0, base::kSystemWindowBackground);
  table.SetCols(5);
  EXPECT_EQ(table.BackColour(1, 0), base::kSystemWindowBackground);
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "01100");
  table.SetRowBackColour(1, 0, 4, kPageBreakYellow);
  EXPECT_EQ(PaintedColumns(table, 1, kPageBreakYellow), "11111");
  table.SetRowBackColour(1, 3, 9, kDefaultBack);
  EXPECT_EQ(PaintedColumns(table, 1, kPageBreakYellow), "11100");
}

TEST(ReportTable, NarrowingDropsTextsColoursAndPicturesForGood) {
  ReportTable table;
  table.SetCols(3);
  table.SetRows(2);
  table.SetText(1, 2, "c");
  table.SetRowBackColour(1, 0, 2, kTitleGreen);
  table.SetPicture(1, 2, CellPicture::kPageBreak);
  table.SetCols(2);
  table.SetCols(3);
  EXPECT_EQ(table.Text(1, 2), "");
  EXPECT_EQ(table.BackColour(1, 2), kDefaultBack);
  EXPECT_EQ(table.Picture(1, 2), CellPicture::kNone);
  EXPECT_EQ(table.BackColour(1, 1), kTitleGreen);
}

TEST(ReportTable, InsertedAndRemovedRowsMoveTheRowsBelow) {
  ReportTable table;
  table.SetCols(2);
  for (std::string_view name : {"a", "b", "c"})
    AddGridRow(table, std::span(&name, 1), table.Rows(), kDefaultBack);
  table.SetPicture(2, 1, CellPicture::kPageBreak);
  table.SetChecked(3, 0, true);
  table.InsertRow(2);
  table.SetRowBackColour(2, 0, 1, kTitleGreen);
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"a|", "|", "b|", "c|"}));
  EXPECT_EQ(table.ClassOf(2), RowClass::kManualBreak);
  EXPECT_EQ(table.Picture(3, 1), CellPicture::kPageBreak);
  EXPECT_EQ(table.Checked(4, 0), std::optional<bool>(true));
  table.RemoveRow(1);
  table.RemoveRow(0);  // the heading row stays
  table.RemoveRow(9);  // outside: nothing
  table.InsertRow(0);  // above the heading row: nothing
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"|", "b|", "c|"}));
  EXPECT_EQ(table.ClassOf(1), RowClass::kManualBreak);
}

TEST(ReportTable, NewLastColumnMovedToTheFrontShiftsEverythingRight) {
  ReportTable table;
  table.SetCols(2);
  const std::string_view head[] = {"Plac"};
  const std::string_view data[] = {"", "X1"};
  AddGridRow(table, head, 1, kDefaultBack);
  table.SetRowBackColour(1, 0, 1, kTitleGreen);
  AddGridRow(table, data, 2, kDefaultBack);
  table.SetPicture(2, 1, CellPicture::kBlank);
  table.SetCols(3);
  table.MoveColumn(2, 0);
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"|Plac|", "||X1"}));
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "011");
  EXPECT_EQ(table.Picture(2, 2), CellPicture::kBlank);
  table.MoveColumn(0, 2);
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"Plac||", "|X1|"}));
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "110");
}

TEST(ReportTable, RowClassesComeFromColumnZero) {
  ReportTable table;
  table.SetCols(2);
  table.SetRows(5);
  table.SetText(1, 0, "Plac");
  table.SetBackColour(1, 0, kTitleGreen);
  table.SetBackColour(2, 0, kTitleGreen);
  table.SetText(2, 1, "text elsewhere");
  table.SetRowBackColour(3, 0, 1, kPageBreakYellow);
  table.SetRowBackColour(4, 1, 1, kTitleGreen);
  EXPECT_EQ(table.ClassOf(1), RowClass::kPlacementHead);
  EXPECT_EQ(table.ClassOf(2), RowClass::kManualBreak);
  EXPECT_EQ(table.ClassOf(3), RowClass::kPageBreakMark);
  EXPECT_EQ(table.ClassOf(4), RowClass::kOrdinary);
}

TEST(ReportTable, CopiesAreIndependent) {
  ReportTable table;
  table.SetRows(2);
  table.SetText(1, 0, "a");
  table.SetPicture(1, 0, CellPicture::kPageBreak);
  ReportTable copy = table;
  table.SetText(1, 0, "b");
  table.SetPicture(1, 0, CellPicture::kNone);
  EXPECT_EQ(copy.Text(1, 0), "a");
  EXPECT_EQ(copy.Picture(1, 0), CellPicture::kPageBreak);
}

TEST(ReportTable, PackedRowsStoreEveryWidthAndLeaveOutColumnsBeyondTheTable) {
  ReportTable table;
  table.SetCols(3);
  const std::uint32_t shortEnds[] = {0, 3, 5, 9};  // "", "abc", "de", "fghi": the fourth has no column
  table.AppendPackedRow("abcdefghi", shortEnds);
  const std::string middle(300, 'm');
  const std::string huge(70000, 'h');
  for (const std::string* longText : {&middle, &huge}) {
    const std::string packed = "x" + *longText;
    const std::uint32_t ends[] = {1, static_cast<std::uint32_t>(packed.size()),
                                  static_cast<std::uint32_t>(packed.size())};
    table.AppendPackedRow(packed, ends);
  }
  const std::uint32_t noEnds[] = {0, 0, 0};
  table.AppendPackedRow("", noEnds);
  ASSERT_EQ(table.Rows(), 5);
  EXPECT_EQ(RowLine(table, 1), "|abc|de");
  EXPECT_EQ(RowLine(table, 2), "x|" + middle + "|");
  EXPECT_EQ(RowLine(table, 3), "x|" + huge + "|");
  EXPECT_EQ(RowLine(table, 4), "||");
  EXPECT_TRUE(table.IsRowBlank(4));
  EXPECT_EQ(table.BackColour(1, 0), kDefaultBack);
  // The packed rows behave as any other: rewritten in place, moved and removed.
  table.SetText(3, 0, "y");
  table.RemoveRow(2);
  EXPECT_EQ(RowLine(table, 2), "y|" + huge + "|");
  EXPECT_EQ(RowLine(table, 1), "|abc|de");
}

TEST(AddGridRow, GrowsColumnsOnlyWhenStrictlyWiderTrimsAndPaints) {
  ReportTable table;
  table.SetCols(2);
  const std::string_view three[] = {" a ", "b", "c"};  // upper bound 2 = Cols(): "c" has no column
  EXPECT_EQ(AddGridRow(table, three, 1, kTitleGreen), 2);
  EXPECT_EQ(table.Cols(), 2);
  EXPECT_EQ(RowLine(table, 1), "a|b");
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "11");
  const std::string_view four[] = {"1", "2", "3", "4"};
  EXPECT_EQ(AddGridRow(table, four, 2, kDefaultBack), 3);
  EXPECT_EQ(table.Cols(), 4);
  EXPECT_EQ(RowLine(table, 2), "1|2|3|4");
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "1100");
  // A row number inside the table cuts it there.
  EXPECT_EQ(AddGridRow(table, three, 1, kDefaultBack), 2);
}

}  // namespace
}  // namespace sw::report
