#include "recording_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sw::excel {
namespace {

using ::testing::ElementsAre;

class RecordingEngineTest : public ::testing::Test {
 protected:
  RecordingEngineTest() { recording_.AddWorkbookFile("C:\\Mallar\\mall.xlsx", {"Common", "Mall"}); }
  Recording recording_;
};

TEST_F(RecordingEngineTest, WritesEachCallAsTheAutomationLineItStandsFor) {
  auto app = CreateRecordingApplication(recording_);
  app->SetVisible(true);
  Workbook book = app->Workbooks().Open("C:\\Mallar\\mall.xlsx", true);
  Sheets sheets = book.Sheets();
  sheets.Item(2).CopyAfter(sheets.Item(sheets.Count()));
  sheets.Item(3).SetName("007");
  sheets.Item(3).Select();
  book.Worksheets().Item(3).Cells(5, 2).SetValue("Kabel \"A\"");
  Sheet page = sheets.Item(3);
  page.Range(page.Cells(10, 2), page.Cells(12, 2)).Select();
  app->Selection().ClearContents();
  page.Rows("12:12").Select();
  app->ActiveSheet().HPageBreaks().Add(app->ActiveCell());
  app->Selection().Copy();
  app->Selection().PasteSpecial(XlPasteType::xlPasteFormats);
  app->Selection().Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
  app->SetCutCopyMode(false);
  book.SaveAs("C:\\R\\Lista.xlsx");
  book.Close(false);
  app->Quit();

  EXPECT_THAT(recording_.lines(),
              ElementsAre("CreateObject(\"Excel.Application\")", "Visible = True",
                          "Workbooks.Open \"C:\\Mallar\\mall.xlsx\", ReadOnly:=True", "Sheets.Count",
                          "Sheets(2).Copy After:=Sheets(2)", "Sheets(3).Name = \"007\"", "Sheets(3).Select",
                          "Sheets(3).Cells(5, 2).Value = \"Kabel \"\"A\"\"\"",
                          "Sheets(3).Range(Cells(10, 2), Cells(12, 2)).Select", "Selection.ClearContents",
                          "Sheets(3).Rows(\"12:12\").Select", "Sheets(3).HPageBreaks.Add Before:=ActiveCell",
                          "Selection.Copy", "Selection.PasteSpecial Paste:=-4122",
                          "Selection.Borders(9).Weight = -4138", "CutCopyMode = False",
                          "SaveAs \"C:\\R\\Lista.xlsx\"", "Close SaveChanges:=False", "Quit"));
  const auto& saved = recording_.files().at("C:\\R\\Lista.xlsx");
  ASSERT_EQ(saved.sheets.size(), 3u);
  EXPECT_EQ(saved.sheets[2].name, "007");
  EXPECT_EQ(saved.Find("007")->cells.at({5, 2}), "Kabel \"A\"");
  EXPECT_EQ(saved.Find("007")->pageBreakRows.count(12), 1u);
}

TEST_F(RecordingEngineTest, FailsTheChosenCallWithTheChosenNumber) {
  recording_.FailCall("Value=", 2, kApplicationDefined);
  recording_.FailCall("SaveAs", 1, kPermissionDenied, "Åtkomst nekad");
  auto app = CreateRecordingApplication(recording_);
  Workbook book = app->Workbooks().Open("C:\\Mallar\\mall.xlsx");
  Sheet sheet = book.Sheets().Item(1);
  sheet.Cells(1, 1).SetValue("a");
  try {
    sheet.Cells(1, 2).SetValue("b");
    FAIL() << "the second value write should fail";
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kApplicationDefined);
  }
  sheet.Cells(1, 3).SetValue("c");
  try {
    book.SaveAs("C:\\R\\x.xlsx");
    FAIL() << "SaveAs should fail";
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kPermissionDenied);
    EXPECT_EQ(error.description(), "Åtkomst nekad");
  }
  EXPECT_EQ(recording_.files().count("C:\\R\\x.xlsx"), 0u);
  EXPECT_EQ(recording_.lines()[3], "Sheets(1).Cells(1, 2).Value = \"b\"  ' fel 1004");
}

TEST_F(RecordingEngineTest, BehavesLikeExcelWhereTheProgramDependsOnIt) {
  recording_.FailCall("CreateObject", 2, kCannotCreateObject);
  auto app = CreateRecordingApplication(recording_);
  Workbook book = app->Workbooks().Open("C:\\Mallar\\mall.xlsx");
  Sheets sheets = book.Sheets();
  sheets.Item(2).CopyAfter(sheets.Item(2));
  sheets.Item(2).CopyAfter(sheets.Item(3));
  EXPECT_EQ(sheets.Item(4).Name(), "Mall (3)");
  EXPECT_THROW(sheets.Item(4).SetName("mall"), base::NumberedError);
  EXPECT_EQ(sheets.Item(4).Name(), "Mall (3)");
  EXPECT_THROW(sheets.Item(9), base::NumberedError);
  EXPECT_THROW(app->Workbooks().Open("C:\\saknas.xlsx"), base::NumberedError);
  try {
    sheets.Item(1).Cells(1, 1).Select();  // Sheets(1) is not the active sheet
    FAIL();
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kApplicationDefined);
  }
  try {
    CreateRecordingApplication(recording_);
    FAIL();
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kCannotCreateObject);
  }
  Workbook unset;
  try {
    unset.Save();
    FAIL();
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kObjectNotSet);
  }
}

}  // namespace
}  // namespace sw::excel
