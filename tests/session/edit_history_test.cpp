// Undo and redo of the preview edits, over the fake installation's dump (one placement "+A1 Panel"
// with five rows, three rows a page).
#include <gtest/gtest.h>

#include "fake_installation.h"
#include "recording_launcher.h"
#include "session/session.h"

namespace sw::session {
namespace {

class EditHistoryTest : public ::testing::Test {
 protected:
  EditHistoryTest()
      : session_({.registry = install_.registry,
                  .settings = install_.settings,
                  .environment = install_.environment,
                  .dialogs = install_.dialogs,
                  .launcher = launcher_,
                  .today = [] { return std::string("2026-01-02"); }}) {
    session_.Start();
  }

  // Column 0 of every row below the heading, with "|" for a page-break mark.
  std::string Rows() const {
    std::string rows;
    const auto& table = session_.Table();
    for (int row = 1; row < table.Rows(); ++row) {
      rows += std::string(table.Text(row, 0));
      if (table.ClassOf(row) == report::RowClass::kManualBreak) rows += "=";
      if (table.ClassOf(row) == report::RowClass::kPageBreakMark) rows += "|";
      rows += ";";
    }
    return rows;
  }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  Session session_;
};

TEST_F(EditHistoryTest, EveryEditIsUndoneAndRedoneWithItsMarksAndPageCount) {
  const std::string loaded = Rows();
  const auto pagesLoaded = session_.Summary().pages;
  EXPECT_FALSE(session_.CanUndo());  // nothing to undo after the load, and nothing happens
  EXPECT_FALSE(session_.CanRedo());
  session_.Undo();
  session_.Redo();
  EXPECT_EQ(Rows(), loaded);

  session_.InsertManualBreak(3);
  const std::string withBreak = Rows();
  const auto pagesWithBreak = session_.Summary().pages;
  ASSERT_NE(withBreak, loaded);
  session_.DeletePlacement(1);
  EXPECT_EQ(session_.Table().Rows(), 1);
  EXPECT_TRUE(session_.CanUndo());

  session_.Undo();
  EXPECT_EQ(Rows(), withBreak);
  EXPECT_EQ(session_.Summary().pages, pagesWithBreak);
  EXPECT_TRUE(session_.CanRedo());
  session_.Undo();
  EXPECT_EQ(Rows(), loaded);
  EXPECT_EQ(session_.Summary().pages, pagesLoaded);
  EXPECT_FALSE(session_.CanUndo());

  session_.Redo();
  EXPECT_EQ(Rows(), withBreak);
  session_.Redo();
  EXPECT_EQ(session_.Table().Rows(), 1);
  EXPECT_FALSE(session_.CanRedo());

  // Removing the break is a step of its own.
  session_.Undo();
  session_.RemoveManualBreak(3);
  EXPECT_EQ(Rows().find('='), std::string::npos);
  EXPECT_FALSE(session_.CanRedo());  // a new edit drops what was undone
  session_.Undo();
  EXPECT_EQ(Rows(), withBreak);
}

TEST_F(EditHistoryTest, AnEditThatChangesNothingIsNoStep) {
  session_.RunPreviewAction(1, preview::PreviewAction::kNone);
  session_.DeletePlacementAt(2);  // not a placement head
  EXPECT_FALSE(session_.CanUndo());
  session_.DeletePlacementAt(1);
  EXPECT_EQ(session_.Table().Rows(), 1);
  EXPECT_TRUE(session_.CanUndo());
}

TEST_F(EditHistoryTest, TypingIntoOneBoxIsOneStepUntilTheBoxIsLeft) {
  const std::string drawnBy = session_.Fields().entries[1].text;
  session_.SetFieldText(0, "K");
  session_.SetFieldText(0, "Kr");
  session_.SetFieldText(0, "Kraft");
  session_.CommitFieldText(0);
  session_.SetFieldText(1, ".");
  session_.CommitFieldText(1);  // the date joins the typing's step
  EXPECT_EQ(session_.Fields().entries[1].text, "2026-01-02");
  session_.SetFieldText(0, "Kraftverk");

  session_.Undo();
  EXPECT_EQ(session_.Fields().entries[0].text, "Kraft");
  session_.Undo();
  EXPECT_EQ(session_.Fields().entries[1].text, drawnBy);
  session_.Undo();
  EXPECT_EQ(session_.Fields().entries[0].text, "");
  EXPECT_FALSE(session_.CanUndo());
  session_.Redo();
  session_.Redo();
  EXPECT_EQ(session_.Fields().entries[1].text, "2026-01-02");
  EXPECT_EQ(session_.Fields().entries[0].text, "Kraft");
}

TEST_F(EditHistoryTest, TextStepsAndGridStepsTakeTurns) {
  const std::string loaded = Rows();
  session_.InsertManualBreak(3);
  const std::string withBreak = Rows();
  session_.SetFieldText(0, "Kraft");
  session_.CommitFieldText(0);
  session_.DeletePlacement(1);

  session_.Undo();
  EXPECT_EQ(Rows(), withBreak);
  EXPECT_EQ(session_.Fields().entries[0].text, "Kraft");
  session_.Undo();
  EXPECT_EQ(Rows(), withBreak);  // a text step leaves the table alone
  EXPECT_EQ(session_.Fields().entries[0].text, "");
  session_.Undo();
  EXPECT_EQ(Rows(), loaded);
  session_.Redo();
  session_.Redo();
  EXPECT_EQ(Rows(), withBreak);
  EXPECT_EQ(session_.Fields().entries[0].text, "Kraft");
  session_.Redo();
  EXPECT_EQ(session_.Table().Rows(), 1);
}

TEST_F(EditHistoryTest, EnterThatMakesTheDateIsAStep) {
  session_.SetFieldText(0, ".");
  session_.PressEnterInField(0);
  session_.PressEnterInField(1);  // nothing changes: no step
  session_.DeletePlacement(1);
  session_.Undo();
  session_.Undo();
  EXPECT_EQ(session_.Fields().entries[0].text, "");
  EXPECT_FALSE(session_.CanUndo());
}

TEST_F(EditHistoryTest, ReloadingTheDumpStartsANewHistory) {
  session_.InsertManualBreak(3);
  session_.SetFieldText(0, "Kraft");
  session_.Undo();
  ASSERT_TRUE(session_.CanUndo());
  ASSERT_TRUE(session_.CanRedo());
  session_.ReloadPreview();
  EXPECT_FALSE(session_.CanUndo());
  EXPECT_FALSE(session_.CanRedo());

  // Tidying the table away from the steps starts one too.
  session_.DeletePlacement(1);
  session_.SetUseSlashTwo(false);
  EXPECT_FALSE(session_.CanUndo());
}

}  // namespace
}  // namespace sw::session
