// Finding a placement, going to a page, the dump written again under an open preview and what the
// window says when nothing of an installation is found: the logic behind the window's commands.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "fake_installation.h"
#include "recording_launcher.h"
#include "report/colours.h"
#include "session/column_fit.h"
#include "session/dump_watch.h"
#include "session/environment_report.h"
#include "session/preview_navigation.h"
#include "session/session.h"

namespace sw::session {
namespace {

const std::string kTempDump = "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt";

// Rows as the preview colours them: "H:name" a placement head, "M" a page-break mark, "B" a manual
// break, anything else an ordinary row.
report::ReportTable TableOf(const std::vector<std::string>& rows) {
  report::ReportTable table;
  table.SetCols(3);
  table.SetRows(static_cast<int>(rows.size()) + 1);
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    const std::string& row = rows[static_cast<std::size_t>(i)];
    const int r = i + 1;
    if (row.rfind("H:", 0) == 0) {
      table.SetText(r, 0, row.substr(2));
      table.SetBackColour(r, 0, report::kTitleGreen);
    } else if (row == "M") {
      table.SetText(r, 1, "rad");
      table.SetBackColour(r, 0, report::kPageBreakYellow);
    } else if (row == "B") {
      table.SetBackColour(r, 0, report::kTitleGreen);
    } else {
      table.SetText(r, 1, row);
    }
  }
  return table;
}

TEST(FindPlacement, FindsTheNextHeadHoldingTheTextInAnyCaseAndStartsOverAtTheEnd) {
  const auto table = TableOf({"H:+A1 Pump", "x", "H:+B2 Fläkt", "x", "H:+A3 Pumpstation", "x"});
  EXPECT_EQ(FindPlacement(table, "pump", 0).row, 1);
  EXPECT_EQ(FindPlacement(table, "pump", 1).row, 5);
  EXPECT_EQ(FindPlacement(table, "PUMP", 5).row, 1);  // after the last, from the top again
  EXPECT_EQ(FindPlacement(table, " fläKT ", 0).row, 3);
  EXPECT_EQ(FindPlacement(table, "FLÄKT", 4).row, 3);
  EXPECT_EQ(FindPlacement(table, "+a3", 2).row, 5);
  // Ordinary rows are not placements, however their cells read.
  EXPECT_FALSE(FindPlacement(table, "x", 0).row);
}

TEST(FindPlacement, NothingFoundIsToldWithTheTextSearchedFor) {
  const auto table = TableOf({"H:+A1 Pump", "x"});
  const auto none = FindPlacement(table, "Motor", 0);
  EXPECT_FALSE(none.row);
  EXPECT_EQ(none.message, "Hittar ingen placering som innehåller \"Motor\".");
  EXPECT_FALSE(FindPlacement(table, "   ", 0).row);
  EXPECT_FALSE(FindPlacement(TableOf({}), "Pump", 0).row);
}

TEST(GoToPage, PagesStartAtRowOneAndAfterEveryMark) {
  const auto table = TableOf({"H:+A1", "a", "M", "b", "c", "M", "B", "d", "M"});
  EXPECT_EQ(PageFirstRows(table), (std::vector<int>{1, 4, 7}));  // the last mark ends the last page
  EXPECT_EQ(FirstRowOfPage(table, 1).row, 1);
  EXPECT_EQ(FirstRowOfPage(table, 2).row, 4);
  EXPECT_EQ(FirstRowOfPage(table, 3).row, 7);
  EXPECT_EQ(FirstRowOfPage(table, 4).message, "Ange en sida mellan 1 och 3.");
  EXPECT_EQ(FirstRowOfPage(table, 0).message, "Ange en sida mellan 1 och 3.");
  EXPECT_FALSE(FirstRowOfPage(table, -2).row);
}

TEST(GoToPage, WithoutMarksThereIsOnePageAndWithoutRowsNone) {
  EXPECT_EQ(PageFirstRows(TableOf({"a", "b"})), std::vector<int>{1});
  EXPECT_EQ(FirstRowOfPage(TableOf({"a", "b"}), 2).message, "Förhandsgranskningen har bara sida 1.");
  EXPECT_TRUE(PageFirstRows(TableOf({})).empty());
  EXPECT_EQ(FirstRowOfPage(TableOf({}), 1).message, "Förhandsgranskningen har inga sidor.");
}

TEST(FitColumnWidths, ColumnsFitTheirContentsAndShareTheRoomLeftAfterTheNames) {
  // Too wide for the view: each as wide as it needs, no wider.
  EXPECT_EQ(FitColumnWidths({120, 300, 400}, 700), (std::vector<int>{120, 300, 400}));
  // Room left: shared by the columns after the names, the odd pixels to the last.
  EXPECT_EQ(FitColumnWidths({120, 30, 40, 50}, 300), (std::vector<int>{120, 50, 60, 70}));
  EXPECT_EQ(FitColumnWidths({100, 10, 10}, 125), (std::vector<int>{100, 12, 13}));
  EXPECT_EQ(FitColumnWidths({100}, 250), std::vector<int>{250});
  EXPECT_TRUE(FitColumnWidths({}, 250).empty());
}

class WatchedSessionTest : public ::testing::Test {
 protected:
  explicit WatchedSessionTest(bool withCadFiles = true)
      : install_(withCadFiles),
        session_({.registry = install_.registry,
                  .settings = install_.settings,
                  .environment = install_.environment,
                  .dialogs = install_.dialogs,
                  .launcher = launcher_}) {}

  void WriteDump(std::string_view text) { install_.Write("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt", text); }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  Session session_;
};

TEST_F(WatchedSessionTest, ADumpWrittenAgainIsToldOnceUntilItChangesAgain) {
  session_.Start();
  ASSERT_EQ(session_.ReportDumps().text, kTempDump);
  EXPECT_FALSE(session_.DumpChangedOnDisk());

  WriteDump("%+A1 Panel%\r\n\tX1\t1\tPump\r\n%+C7 Ny%\r\n\tX2\t1\tMotor\r\n");
  EXPECT_TRUE(session_.DumpChangedOnDisk());
  EXPECT_TRUE(session_.DumpChangedOnDisk());  // asking does not settle it

  // Kept: the edits stay, nothing is told again until the file changes once more.
  session_.DeletePlacement(1);
  session_.KeepDumpOnScreen();
  EXPECT_FALSE(session_.DumpChangedOnDisk());
  EXPECT_TRUE(session_.CanUndo());
  WriteDump("%+A1 Panel%\r\n\tX1\t1\tPump\r\n%+C7 Ny%\r\n\tX2\t1\tMotor\r\n\tX2\t2\tLampa\r\n");
  EXPECT_TRUE(session_.DumpChangedOnDisk());

  // Loaded again: the new rows, a new history and nothing more to tell.
  session_.ReloadChangedDump();
  EXPECT_FALSE(session_.DumpChangedOnDisk());
  EXPECT_FALSE(session_.CanUndo());
  EXPECT_EQ(FindPlacement(session_.Table(), "ny", 0).row.has_value(), true);
}

TEST_F(WatchedSessionTest, AFileReplacedByAnotherOfTheSameSizeAndTimeIsAChangeToo) {
  session_.Start();
  const auto path = install_.Host("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt");
  const auto written = std::filesystem::last_write_time(path);
  const auto size = std::filesystem::file_size(path);
  // Written beside it and renamed over it, as editors save; same length, same time.
  const auto beside = install_.Host("Temp/VOLTARIS/VOLTARIS ic/ny.txt");
  std::filesystem::copy_file(path, beside);
  std::filesystem::rename(beside, path);
  std::filesystem::last_write_time(path, written);
  ASSERT_EQ(std::filesystem::file_size(path), size);
  EXPECT_TRUE(session_.DumpChangedOnDisk());
}

TEST_F(WatchedSessionTest, AMissingFileOrNoDumpIsNoChange) {
  session_.Start();
  install_.Remove("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt");
  EXPECT_FALSE(session_.DumpChangedOnDisk());
  session_.TypeReportDump("C:\\Saknas.txt");
  WriteDump("%+A1 Panel%\r\n");
  EXPECT_FALSE(session_.DumpChangedOnDisk());  // the dump on screen is the missing one now
}

TEST_F(WatchedSessionTest, AnInstallationWithATemplateIsFoundAndItsTemplateChosen) {
  session_.Start();
  EXPECT_FALSE(NoInstallationFound(session_));
  EXPECT_TRUE(TemplateChosen(session_));
  const EnvironmentReport found = DescribeEnvironment(session_);
  EXPECT_EQ(found.dump, kTempDump);
  EXPECT_EQ(found.templateName, "PANEL.xlsx");
}

class NothingInstalledTest : public WatchedSessionTest {
 protected:
  NothingInstalledTest() : WatchedSessionTest(false) {}
};

TEST_F(NothingInstalledTest, NothingFoundSaysWhereItLooked) {
  session_.Start();
  EXPECT_TRUE(NoInstallationFound(session_));
  EXPECT_FALSE(TemplateChosen(session_));
  const auto lines = NothingFoundLines(session_);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(),
            "Hittade ingen VOLTARIS-installation: ingen katalog för rapportmallar och ingen rapportfil.");
  std::string all;
  for (const auto& line : lines) all += line + "\n";
  EXPECT_NE(all.find("HKEY_LOCAL_MACHINE\\Software\\VOLTARIS\\"), std::string::npos);
  EXPECT_NE(all.find("volt_report.txt"), std::string::npos);
  EXPECT_NE(all.find("Mallkataloger: 0   Rapportmallar: 0   Rapportfiler: 0"), std::string::npos);
}

}  // namespace
}  // namespace sw::session
