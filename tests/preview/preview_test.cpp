#include <gtest/gtest.h>

#include "base/system_colours.h"
#include "memory_settings.h"
#include "preview/preview_controls.h"
#include "preview/preview_edits.h"
#include "preview/preview_page_breaks.h"
#include "temp_dir.h"

namespace sw::preview {
namespace {

using report::CellPicture;
using report::kPageBreakYellow;
using report::kTitleGreen;

// One character per report row: 'G' placement head (green, named after its row), 'B' manual break
// (green, empty), 'Y' page-break mark, '.' ordinary row with text in column 1.
report::ReportTable Table(std::string_view rows, int cols = 3) {
  report::ReportTable table;
  table.SetCols(cols);
  table.SetRows(static_cast<int>(rows.size()) + 1);
  for (int row = 1; row < table.Rows(); ++row) {
    switch (rows[static_cast<std::size_t>(row - 1)]) {
      case 'G':
        table.SetText(row, 0, "P" + std::to_string(row));
        table.SetRowBackColour(row, 0, cols - 1, kTitleGreen);
        break;
      case 'B':
        table.SetRowBackColour(row, 0, cols - 1, kTitleGreen);
        break;
      case 'Y':
        table.SetRowBackColour(row, 0, cols - 1, kPageBreakYellow);
        table.SetPicture(row, 0, CellPicture::kPageBreak);
        break;
      default:
        table.SetText(row, 1, "r" + std::to_string(row));
    }
  }
  return table;
}

std::vector<int> YellowRows(const report::ReportTable& table) {
  std::vector<int> rows;
  for (int row = 1; row < table.Rows(); ++row) {
    if (table.BackColour(row, 0) == kPageBreakYellow) rows.push_back(row);
  }
  return rows;
}

// Column 1 of every report row, joined: shows which rows an edit kept.
std::string Contents(const report::ReportTable& table) {
  std::string out;
  for (int row = 1; row < table.Rows(); ++row) {
    out += table.Text(row, 0).empty() ? std::string(table.Text(row, 1)) : std::string(table.Text(row, 0));
    out += ' ';
  }
  return out;
}

TEST(PageBreakMarksTest, MarksFallAboveGreenRowsAndAfterEachFullPage) {
  struct Case {
    const char* rows;
    int pageLength;
    std::vector<int> marks;
  };
  for (const auto& c : std::vector<Case>{
           {"G.........", 3, {4, 7, 10}},
           {"G...G.....", 3, {4, 8}},
           {"GG......", 3, {1, 5, 8}},  // the first of two green rows is the row above a green row
           {"G..B..", 10, {3}},
           {"......", 1, {2, 3, 4, 5, 6}},  // row 1 is never marked
       }) {
    auto table = Table(c.rows);
    MarkPageBreaks(table, c.pageLength);
    EXPECT_EQ(YellowRows(table), c.marks) << c.rows;
    for (int row : c.marks) {
      EXPECT_EQ(table.Picture(row, 0), CellPicture::kPageBreak);
      EXPECT_EQ(table.BackColour(row, table.Cols() - 1), kPageBreakYellow);
    }
  }
}

TEST(PageBreakMarksTest, ResetClearsColumnZeroOnly) {
  auto table = Table("G.GG...");
  MarkPageBreaks(table, 10);
  EXPECT_EQ(YellowRows(table), (std::vector<int>{2, 3}));
  ResetPageBreakMarks(table);
  EXPECT_TRUE(YellowRows(table).empty());
  EXPECT_EQ(table.BackColour(3, 0), base::kSystemWindowBackground);
  EXPECT_EQ(table.BackColour(3, 2), kPageBreakYellow);  // the rest of a former mark stays yellow
  EXPECT_EQ(table.Picture(3, 0), CellPicture::kBlank);
  EXPECT_EQ(table.Picture(3, 1), CellPicture::kBlank);
  // The head at row 3 lost its green, so the row above it is no longer marked.
  MarkPageBreaks(table, 10);
  EXPECT_EQ(YellowRows(table), (std::vector<int>{3}));
}

class ShowPageBreaksTest : public ::testing::Test {
 protected:
  ShowPageBreaksTest() { dir_.Write("Mall.xlsx", ""); }
  // The page length as read, with one notice of a bad line.
  base::Outcome<PageBreaksStatus> Show(std::string_view file, int pageLength) {
    folder_ = dir_.path().string();
    templates::PageLengthReading reading;
    reading.rowsPerPage = pageLength;
    reading.outcome.Tell("rad");
    return ShowPageBreaks(table_, {folder_, file, &reading, &settings_});
  }

  testing::TempDir dir_;
  std::string folder_;
  testing::MemorySettings settings_;
  report::ReportTable table_ = Table("G..Y.....");
};

TEST_F(ShowPageBreaksTest, GuardsLeaveOldMarksAlone) {
  struct Case {
    const char* file;
    int length;
    PageBreaksStatus status;
    std::size_t notices;  // the reading's notice is told once for every time the length is read
  };
  for (const auto& c : std::vector<Case>{{"  ", 3, PageBreaksStatus::kNoTemplate, 0},
                                         {"Saknas.xlsx", 3, PageBreaksStatus::kNoTemplate, 0},
                                         {"MALL.XLSX", 0, PageBreaksStatus::kNoPageLength, 1},
                                         {"MALL.XLSX", -1, PageBreaksStatus::kNoPageLength, 1}}) {
    const auto shown = Show(c.file, c.length);
    EXPECT_EQ(shown.status, c.status) << c.file;
    EXPECT_EQ(shown.notices.size(), c.notices) << c.file;
    EXPECT_EQ(YellowRows(table_), std::vector<int>{4});
  }
  // Without a paired INI file there is nothing to read and nothing to tell.
  const auto unpaired = ShowPageBreaks(table_, {dir_.path().string(), "Mall.xlsx", nullptr, &settings_});
  EXPECT_EQ(unpaired.status, PageBreaksStatus::kNoPageLength);
  EXPECT_TRUE(unpaired.notices.empty());
}

TEST_F(ShowPageBreaksTest, SettingDecidesWhetherMarksAreDrawn) {
  settings_.SaveAppSetting("ShowPageBreaks", "0");
  const auto hidden = Show("mall.xlsx", 3);
  EXPECT_TRUE(hidden);
  EXPECT_TRUE(YellowRows(table_).empty());
  EXPECT_EQ(table_.Picture(4, 0), CellPicture::kBlank);
  // Read for the length and once more after it, as every load does: the bad line is told twice.
  EXPECT_EQ(hidden.notices, (std::vector<base::Notice>{{"rad"}, {"rad"}}));

  for (const char* value : {"", "1"}) {  // an empty value reads as the default "1"
    settings_.SaveAppSetting("ShowPageBreaks", value);
    EXPECT_TRUE(Show("mall.xlsx", 3));
    EXPECT_EQ(YellowRows(table_), (std::vector<int>{4, 7}));
  }
  settings_.SaveAppSetting("ShowPageBreaks", "yes");
  Show("mall.xlsx", 3);
  EXPECT_TRUE(YellowRows(table_).empty());
}

TEST(PreviewEditsTest, PopupEntriesFollowTheCurrentRow) {
  const auto table = Table("G.BY.");
  struct Case {
    int row;
    int pointerY;
    std::array<bool, 3> enabled;
  };
  for (const auto& c : std::vector<Case>{
           {1, 300, {true, false, false}},
           {1, 240, {false, false, false}},  // pointer on the heading row
           {2, 300, {false, false, false}},  // directly below a green row
           {3, 300, {false, false, true}},
           {4, 300, {false, false, false}},  // a mark not yet reset
           {5, 300, {false, true, false}},
       }) {
    const auto commands = PreviewPopupCommands(table, c.row, c.pointerY, 240);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(commands[i].enabled, c.enabled[i]) << c.row << " " << i;
  }
  const auto commands = PreviewPopupCommands(table, 1, 300, 240);
  EXPECT_EQ(commands[0].id, 951);
  EXPECT_EQ(commands[0].caption, "&Radera placering P1");
  EXPECT_EQ(commands[1].caption, "&Infoga manuell sidbrytning här");
  EXPECT_EQ(commands[2].caption, "Ta &bort manuell sidbrytning");
  EXPECT_TRUE(ShowsPreviewPopup(2, 1));
  EXPECT_FALSE(ShowsPreviewPopup(1, 1));
  EXPECT_FALSE(ShowsPreviewPopup(2, 0));
}

TEST(PreviewEditsTest, DoubleClickChoosesByRowState) {
  auto table = Table("G.BY..");
  table.SetBackColour(6, 0, base::kSystemWindowBackground);
  const std::vector<PreviewAction> expected{
      PreviewAction::kDeletePlacement,   PreviewAction::kNone,
      PreviewAction::kRemoveManualBreak, PreviewAction::kNone,
      PreviewAction::kInsertManualBreak, PreviewAction::kInsertManualBreak};
  for (int row = 1; row <= 6; ++row) EXPECT_EQ(DoubleClickAction(table, row), expected[row - 1]) << row;
  EXPECT_EQ(DoubleClickAction(table, 0), PreviewAction::kNone);
}

TEST(PreviewEditsTest, DeletePlacementRemovesItsRowsAndTheFinalRowRule) {
  struct Case {
    const char* rows;
    int row;
    std::string remaining;
  };
  for (const auto& c : std::vector<Case>{
           {"G..G..", 1, "P4 r5 r6 "},
           {"G..G..", 4, "P1 r2 r3 "},  // the last placement goes completely
           {"G..G", 1, ""},             // a following head that is the last row goes too
           {"G..B..G.", 1, "P7 r8 "},   // a manual break has no column-0 text: it goes with the placement
           {"G", 1, ""},
       }) {
    auto table = Table(c.rows);
    DeletePlacement(table, c.row);
    EXPECT_EQ(Contents(table), c.remaining) << c.rows << " at " << c.row;
  }
}

TEST(PreviewEditsTest, ManualBreaksAreInsertedAndRemovedAndMarksRedrawn) {
  auto table = Table("G....");
  int redraws = 0;
  const auto redraw = [&] { ++redraws; };
  RunPreviewAction(table, 3, PreviewAction::kInsertManualBreak, redraw);
  ASSERT_EQ(table.Rows(), 7);
  EXPECT_EQ(table.ClassOf(3), report::RowClass::kManualBreak);
  EXPECT_EQ(table.BackColour(3, 2), kTitleGreen);
  EXPECT_EQ(table.Text(4, 1), "r3");
  RunPreviewAction(table, 3, PreviewAction::kRemoveManualBreak, redraw);
  EXPECT_EQ(Contents(table), "P1 r2 r3 r4 r5 ");
  EXPECT_EQ(redraws, 2);
  RunPreviewAction(table, 1, PreviewAction::kDeletePlacement, redraw);
  EXPECT_EQ(redraws, 2);  // deleting does not redraw
}

TEST(PreviewControlsTest, ColumnWidthLayoutAndSheetNumberKeys) {
  EXPECT_EQ(LayOutColumnWidths({1200}, 9000), std::vector<int>{8880});
  EXPECT_EQ(LayOutColumnWidths({1200, 10, 10, 10}, 9000), (std::vector<int>{800, 2733, 2733, 2733}));
  // (1002 − 500) / 4 = 125.5 and (1006 − 500) / 4 = 126.5 both round to the even 126.
  EXPECT_EQ(LayOutColumnWidths({500, 0, 0, 0, 0}, 1002), (std::vector<int>{500, 126, 126, 126, 126}));
  EXPECT_EQ(LayOutColumnWidths({500, 0, 0, 0, 0}, 1006), (std::vector<int>{500, 126, 126, 126, 126}));

  for (int code : {8, 9, 13, 48, 57, 58, 59}) EXPECT_TRUE(SheetNumberKeyPasses(code)) << code;
  for (int code : {0, 27, 32, 47, 60, 65, 97, 127}) EXPECT_FALSE(SheetNumberKeyPasses(code)) << code;

  // Text from a paste: every character must be one the keys could have typed into the box.
  for (const char* text : {"", "007", "12:;", "9"}) EXPECT_TRUE(SheetNumberTextPasses(text)) << text;
  for (const char* text : {"1a", " 1", "1\t", "1\r", "-3", "1.5", "\xc3\xa51"}) {
    EXPECT_FALSE(SheetNumberTextPasses(text)) << text;
  }
}

TEST(PreviewControlsTest, FieldBoxesCommitTheDateAndEnterMovesOn) {
  const templates::ShortDateSource today = [] { return std::string("2024-05-01"); };
  EXPECT_EQ(FieldTextOnCommit(".", today), "2024-05-01");
  EXPECT_EQ(FieldTextOnCommit(" .", today), " .");
  EXPECT_EQ(FieldTextOnCommit("..", today), "..");

  templates::FieldPanel fields;
  for (int i : {0, 1, 2, 28, 29}) fields.entries[static_cast<std::size_t>(i)].enabled = true;
  fields.entries[1].text = ".";
  EXPECT_EQ(PressEnterInField(fields, 1, today), 2);
  EXPECT_EQ(fields.entries[1].text, "2024-05-01");
  EXPECT_EQ(NextFieldOnEnter(fields, 2), 0);  // box 3 is disabled
  EXPECT_EQ(NextFieldOnEnter(fields, 28), 29);
  EXPECT_EQ(NextFieldOnEnter(fields, 29), 0);
}

}  // namespace
}  // namespace sw::preview
