#include "preview/export_fixup.h"

#include <gtest/gtest.h>

#include "fake_environment.h"
#include "scripted_dialogs.h"
#include "temp_dir.h"

namespace sw::preview {
namespace {

using report::kTitleGreen;

// A table as the FBLTAY export arrives: the placement name in column 0, its fields from column 0 too.
report::ReportTable ExportTable() {
  report::ReportTable table;
  table.SetCols(2);
  table.SetRows(4);
  table.SetText(1, 0, "+A1");
  table.SetRowBackColour(1, 0, 1, kTitleGreen);
  table.SetText(2, 0, "K1");
  table.SetText(2, 1, "X1:1");
  table.SetRowBackColour(3, 0, 1, kTitleGreen);  // a manual page break
  return table;
}

class ExportFixupTest : public ::testing::Test {
 protected:
  void WithCadIni(std::string_view text) { windir_.Write("VOLTARIS.INI", text); }
  bool Run(bool force, std::string_view reportId) {
    return AdjustExportFile(force, reportId, environment_, dialogs_, table_, [&] { ++rechecks_; });
  }

  testing::TempDir windir_;
  testing::FakeEnvironment environment_{{"windir", windir_.path().string()}};
  testing::ScriptedDialogs dialogs_;
  report::ReportTable table_ = ExportTable();
  int rechecks_ = 0;
};

TEST_F(ExportFixupTest, QuestionIsAskedOnlyWhenTheConditionsHold) {
  struct Case {
    const char* cadIni;
    bool force;
    const char* reportId;
    bool asked;
  };
  for (const auto& c : std::vector<Case>{
           {"[CNCHSCR]\nA=1\n", false, "fbltay", true},
           {"[CNCHSCR]\nA=1\n", false, "PANEL", false},
           {"[CNCHSCR]\n", false, "FBLTAY", false},
           {"[Other]\nA=1\n", false, "FBLTAY", false},
           {nullptr, false, "FBLTAY", false},
           {nullptr, true, "", true},
           {"[CNCHSCR]\nA=1\n", true, "PANEL", true},
       }) {
    std::filesystem::remove(windir_.path() / "VOLTARIS.INI");
    if (c.cadIni) WithCadIni(c.cadIni);
    dialogs_.messages.clear();
    dialogs_.answers = {base::MessageAnswer::kNo};
    EXPECT_FALSE(Run(c.force, c.reportId));
    ASSERT_EQ(dialogs_.messages.size(), c.asked ? 1u : 0u) << c.reportId << " force " << c.force;
    if (c.asked) {
      EXPECT_EQ(dialogs_.messages[0].text, "Infoga kolumn i yttre förbindningstabell?");
      EXPECT_EQ(dialogs_.messages[0].title, "Justera fel i exportfil");
      EXPECT_EQ(dialogs_.messages[0].icon, base::MessageIcon::kQuestion);
      EXPECT_EQ(dialogs_.messages[0].buttons, base::MessageButtons::kYesNo);
    }
  }
  // No leaves the table as it was.
  EXPECT_EQ(table_.Cols(), 2);
  EXPECT_EQ(table_.Text(2, 0), "K1");
  EXPECT_EQ(rechecks_, 0);
}

TEST_F(ExportFixupTest, YesInsertsTheLeadingColumnAndRechecksTheTemplate) {
  dialogs_.answers = {base::MessageAnswer::kYes};
  ASSERT_TRUE(Run(true, "FBLTAY"));
  EXPECT_EQ(rechecks_, 1);
  ASSERT_EQ(table_.Cols(), 3);
  // The placement head keeps its name in column 0, green.
  EXPECT_EQ(table_.Text(1, 0), "+A1");
  EXPECT_EQ(table_.Text(1, 1), "");
  EXPECT_EQ(table_.BackColour(1, 0), kTitleGreen);
  // A data row moves one column right and column 0 is empty.
  EXPECT_EQ(table_.Text(2, 0), "");
  EXPECT_EQ(table_.Text(2, 1), "K1");
  EXPECT_EQ(table_.Text(2, 2), "X1:1");
  EXPECT_NE(table_.BackColour(2, 0), kTitleGreen);
  EXPECT_EQ(table_.ClassOf(3), report::RowClass::kManualBreak);
}

}  // namespace
}  // namespace sw::preview
