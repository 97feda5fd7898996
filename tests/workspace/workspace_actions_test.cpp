#include "app/workspace/workspace_actions.h"

#include <gtest/gtest.h>

#include "fake_installation.h"

namespace sw::workspace {
namespace {

class WorkspaceActionsTest : public ::testing::Test {
 protected:
  WorkspaceActionsTest()
      : window_({.registry = install_.registry,
                 .settings = install_.settings,
                 .environment = install_.environment,
                 .dialogs = install_.dialogs}) {
    window_.Load();
  }

  testing::FakeInstallation install_;
  Workspace window_;
};

TEST_F(WorkspaceActionsTest, SummaryCountsRowsPlacementsAndThePagesGenerationWouldMake) {
  auto summary = SummarizePreview(window_);
  EXPECT_EQ(summary.rows, 6);
  EXPECT_EQ(summary.placements, 1);
  EXPECT_EQ(summary.pages, 2);  // three rows a page

  // An INI file generation would refuse gives no page count, and says nothing more about it.
  install_.Write("Projektmallar/PANEL.ini",
                 "[Tabs]\r\nTemplate=Sida\r\n[Common]\r\nProjekt=C3\r\n[Sheet]\r\nSTARTROW=1\r\n");
  const auto messagesBefore = install_.dialogs.messages.size();
  summary = SummarizePreview(window_);
  EXPECT_FALSE(summary.pages.has_value());
  EXPECT_EQ(install_.dialogs.messages.size(), messagesBefore);
}

TEST_F(WorkspaceActionsTest, InsertAndRemoveRedrawTheMarksDeleteDoesNot) {
  RunPreviewEdit(window_, 3, templ::PreviewAction::kInsertManualBreak, install_.dialogs, install_.settings);
  ASSERT_EQ(window_.table.Rows(), 8);
  EXPECT_EQ(window_.table.ClassOf(3), report::RowClass::kManualBreak);
  EXPECT_EQ(window_.table.ClassOf(2), report::RowClass::kPageBreakMark);
  EXPECT_EQ(window_.table.ClassOf(6), report::RowClass::kPageBreakMark);

  RunPreviewEdit(window_, 3, templ::PreviewAction::kRemoveManualBreak, install_.dialogs, install_.settings);
  ASSERT_EQ(window_.table.Rows(), 7);
  EXPECT_EQ(window_.table.ClassOf(4), report::RowClass::kPageBreakMark);
  EXPECT_EQ(window_.table.ClassOf(2), report::RowClass::kOrdinary);

  RunPreviewEdit(window_, 1, templ::PreviewAction::kDeletePlacement, install_.dialogs, install_.settings);
  EXPECT_EQ(window_.table.Rows(), 1);
}

TEST_F(WorkspaceActionsTest, FieldCommitTurnsADotIntoTodaysDate) {
  window_.fields.entries[4].text = ".";
  EXPECT_EQ(CommitFieldText(window_, 4, [] { return std::string("2026-11-23"); }), "2026-11-23");
  EXPECT_EQ(window_.fields.entries[4].text, "2026-11-23");
  window_.fields.entries[5].text = "..";
  EXPECT_EQ(CommitFieldText(window_, 5, [] { return std::string("2026-11-23"); }), "..");
  EXPECT_EQ(CommitFieldText(window_, 30), "");
}

TEST_F(WorkspaceActionsTest, ChoosingADumpFileLoadsItAndRemembersItsFolder) {
  EXPECT_FALSE(ChooseReportDumpFile(window_, install_.dialogs, install_.settings, "C:\\Program\\"));
  ASSERT_EQ(install_.dialogs.fileRequests.size(), 1u);
  EXPECT_EQ(install_.dialogs.fileRequests[0].title, "Välj textfil");
  EXPECT_EQ(install_.dialogs.fileRequests[0].filter, "(Textfil *.txt)|*.txt");
  EXPECT_EQ(install_.dialogs.fileRequests[0].initialFolder, "C:\\Program\\");
  EXPECT_EQ(window_.table.Rows(), 7);

  install_.Write("Egen/rapport.txt", "%+B1 Box%\r\n\tX9\t1\tMotor\r\n");
  install_.dialogs.fileAnswers.push_back(std::string("C:\\Egen\\rapport.txt"));
  EXPECT_TRUE(ChooseReportDumpFile(window_, install_.dialogs, install_.settings, "C:\\Program\\"));
  EXPECT_EQ(window_.voltDump.text, "C:\\Egen\\rapport.txt");
  EXPECT_EQ(install_.settings.GetAppSetting("DumpPath", ""), "C:\\Egen\\");
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), "C:\\Egen\\rapport.txt");
  ASSERT_EQ(window_.table.Rows(), 3);
  EXPECT_EQ(window_.table.Text(1, 0), "+B1 Box");
}

TEST(WorkbookLeftOpenTest, TheTargetOrTheLastPageFile) {
  gen::GenerationOutcome outcome;
  EXPECT_EQ(WorkbookLeftOpen(outcome, false, "C:\\Ut\\A.xlsx"), "");
  outcome.savedFiles = {"C:\\Ut\\A-1.xlsx", "C:\\Ut\\A-2.xlsx"};
  EXPECT_EQ(WorkbookLeftOpen(outcome, true, "C:\\Ut\\A.xlsx"), "C:\\Ut\\A-2.xlsx");
  outcome.savedFiles = {"C:\\Ut\\A.xlsx"};
  EXPECT_EQ(WorkbookLeftOpen(outcome, false, "C:\\Ut\\A.xlsx"), "C:\\Ut\\A.xlsx");
}

}  // namespace
}  // namespace sw::workspace
