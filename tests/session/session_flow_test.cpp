// The whole workflow without a window, as a user goes through it: start, choose a template and a
// dump, edit the preview, fill in the texts, generate. Checks what a view would be told and
// what ends up in the workbook and the settings.
#include <gtest/gtest.h>

#include <filesystem>

#include "fake_installation.h"
#include "recording_launcher.h"
#include "report/report_table.h"
#include "session/session.h"

namespace sw::session {
namespace {

namespace fs = std::filesystem;

class ChangeLog final : public SessionObserver {
 public:
  void SessionChanged(Changes what) override { seen |= what; }
  Changes TakeAll() {
    const Changes all = seen;
    seen = {};
    return all;
  }
  Changes seen;
};

// Remembers how far the last busy period got.
class LastStep final : public report::LoadProgress {
 public:
  void Begin(int count) override {
    total = count;
    done = 0;
  }
  void Step(int value) override { done = value; }
  void End() override {}
  int total = 0;
  int done = 0;
};

class SessionFlowTest : public ::testing::Test {
 protected:
  SessionFlowTest()
      : session_({.registry = install_.registry,
                  .settings = install_.settings,
                  .environment = install_.environment,
                  .dialogs = install_.dialogs,
                  .launcher = launcher_,
                  .progress = &progress_,
                  .programFolder = "C:\\Program\\"}) {
    session_.AddObserver(changes_);
  }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  LastStep progress_;
  ChangeLog changes_;
  Session session_;
};

TEST_F(SessionFlowTest, StartEditGenerate) {
  // A real template workbook and its INI file under the name matching the current report.
  fs::copy_file(testing::DataFile("templates/title_block.xlsx"), install_.Host("Projektmallar/PANEL.xlsx"),
                fs::copy_options::overwrite_existing);
  fs::copy_file(testing::DataFile("generation/three_rows.ini"), install_.Host("Projektmallar/PANEL.ini"),
                fs::copy_options::overwrite_existing);
  session_.Start();
  const Changes atStart = changes_.TakeAll();
  EXPECT_TRUE(atStart.Has(Change::kPickers));
  EXPECT_TRUE(atStart.Has(Change::kTable));
  EXPECT_TRUE(atStart.Has(Change::kSheetNumber));
  EXPECT_TRUE(atStart.Has(Change::kFields));
  ASSERT_EQ(session_.Templates().text, "PANEL.xlsx");
  EXPECT_EQ(session_.TemplatePath(), "C:\\Projektmallar\\PANEL.xlsx");
  const int rows = session_.Table().Rows();
  const auto pagesBefore = session_.PagesOfGeneration();
  ASSERT_TRUE(pagesBefore.has_value());

  // A manual break under the first placement's first data row: one page more, marks drawn again.
  session_.InsertManualBreak(3);
  EXPECT_TRUE(changes_.TakeAll().Has(Change::kMarks));
  EXPECT_EQ(session_.Table().Rows(), rows + 1);
  EXPECT_EQ(session_.PagesOfGeneration(), *pagesBefore + 1);
  session_.RemoveManualBreak(3);
  EXPECT_EQ(session_.Table().Rows(), rows);
  EXPECT_EQ(session_.PagesOfGeneration(), pagesBefore);

  session_.SetFieldText(0, "Kraft");
  session_.CommitFieldText(0);
  EXPECT_TRUE(changes_.TakeAll().Has(Change::kFields));

  install_.dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel.xlsx"));
  fs::create_directories(install_.Host("Ut"));
  const auto result = session_.Generate();
  ASSERT_TRUE(result.Succeeded()) << (install_.dialogs.messages.empty()
                                          ? ""
                                          : install_.dialogs.messages.back().text);
  ASSERT_EQ(result.workbooks.size(), 1u);
  // The progress bar went through every page the status bar announced.
  EXPECT_EQ(progress_.total, *pagesBefore + 1);
  EXPECT_EQ(progress_.done, *pagesBefore);
  EXPECT_TRUE(fs::is_regular_file(install_.Host("Ut/Panel.xlsx")));
  EXPECT_EQ(session_.LastWorkbook(), "C:\\Ut\\Panel.xlsx");
  EXPECT_TRUE(changes_.TakeAll().Has(Change::kWorkbook));
  EXPECT_EQ(install_.settings.GetAppSetting("LastRdsDir", ""), "C:\\Projektmallar\\");

  // Deleting the placement is not followed by new marks.
  changes_.TakeAll();
  session_.DeletePlacement(1);
  const Changes afterDelete = changes_.TakeAll();
  EXPECT_TRUE(afterDelete.Has(Change::kTable));
  EXPECT_FALSE(afterDelete.Has(Change::kMarks));
  EXPECT_EQ(session_.Table().Rows(), 1);  // the only placement: the heading row is left
}

}  // namespace
}  // namespace sw::session
