// The COM engine against a scripted Excel: members reached by name with their named arguments,
// Excel's failures as run-time numbers, combined writes, released references, and creation where
// Excel is not installed.
#include "excel/com/com_engine_win.h"

#include <gtest/gtest.h>

#include "excel/application_factory.h"
#include "excel/automation.h"
#include "fake_excel_win.h"

namespace sw::excel {
namespace {

using testing::FakeExcel;
using testing::FakeFile;
using testing::FakeSheet;

constexpr HRESULT kExcelError = static_cast<HRESULT>(0x800A03EC);
const std::string kTemplate = "C:\\Mallar\\mall.xlsx";

class WindowsOnlyComEngineTest : public ::testing::Test {
 protected:
  WindowsOnlyComEngineTest() {
    FakeSheet common{"Common", {}, {}, {}};
    FakeSheet page{"Mall", {}, {}, {}};
    page.cells[{10, 3}] = {"mallens text", false};
    excel_.AddFile(kTemplate, FakeFile{{common, page}});
  }
  std::unique_ptr<Application> Start(bool combineWrites = true) {
    return std::make_unique<Application>(com::CreateComEngine(
        [this](IDispatch** application) { return excel_.CreateApplication(application); },
        com::ComEngineOptions{.combineWrites = combineWrites}));
  }
  FakeExcel excel_;
};

TEST_F(WindowsOnlyComEngineTest, MembersReachTheObjectModelByNameAndExcelStaysOpenWithTheResult) {
  {
    auto app = Start();
    app->SetVisible(true);
    Workbook book =
        app->Workbooks().Open(kTemplate, OpenArguments{.updateLinks = true, .readOnly = std::nullopt});
    Sheets sheets = book.Sheets();
    ASSERT_EQ(sheets.Count(), 2);
    EXPECT_EQ(sheets.Item(2).Name(), "Mall");
    sheets.Item(2).CopyAfter(sheets.Item(sheets.Count()));
    ASSERT_EQ(sheets.Count(), 3);
    EXPECT_EQ(sheets.Item(3).Name(), "Mall (2)");
    EXPECT_EQ(app->ActiveSheet().ref().sheet, sheets.Item(3).ref().sheet)
        << "the copy is the same sheet object";
    sheets.Item(3).SetName("007");
    sheets.Item(3).Select();
    Sheet page = book.Worksheets().Item(3);
    EXPECT_EQ(page.Index(), 3);
    page.Cells(1, 6).SetValue("007");
    page.Cells(5, 2).SetValue("Kabel \"A\" – 1,5 mm²");
    EXPECT_EQ(page.Cells(1, 6).Value(), "007");
    page.Range(page.Cells(10, 3), page.Cells(12, 3)).Select();
    app->Selection().ClearContents();
    page.Rows("12:12").Select();
    app->ActiveSheet().HPageBreaks().Add(app->ActiveCell());
    EXPECT_EQ(page.HPageBreaks().Count(), 1);
    page.Rows("11:11").Select();
    app->Selection().Copy();
    page.Rows("12:14").Select();
    app->Selection().PasteSpecial(XlPasteType::xlPasteFormats);
    page.Cells(15, 1).Select();
    app->Selection().Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
    app->SetCutCopyMode(false);
    page.Cells().EntireColumn().AutoFit();
    EXPECT_EQ(app->Workbooks().Count(), 1);
    book.SaveAs("C:\\R\\Lista.xlsx");
    EXPECT_EQ(book.FullName(), "C:\\R\\Lista.xlsx");
  }
  EXPECT_EQ(excel_.ReferencesHeldOutside(), 0);
  EXPECT_TRUE(excel_.visible());
  EXPECT_TRUE(excel_.userControl()) << "Excel must outlive the program's last reference";

  const FakeFile& saved = excel_.files().at("C:\\R\\Lista.xlsx");
  ASSERT_EQ(saved.sheets.size(), 3u);
  const FakeSheet* page = saved.Find("007");
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(page->cells.at({1, 6}).text, "007");
  EXPECT_FALSE(page->cells.at({1, 6}).number) << "values are written as text";
  EXPECT_EQ(page->cells.at({5, 2}).text, "Kabel \"A\" – 1,5 mm²");
  EXPECT_EQ(page->cells.count({10, 3}), 0u);
  EXPECT_EQ(page->pageBreakRows, std::set<int>{12});
  EXPECT_EQ(saved.Find("Mall")->cells.at({10, 3}).text, "mallens text");
}

TEST_F(WindowsOnlyComEngineTest, ReadOnlyCloseAndQuitPassTheirNamedArguments) {
  auto app = Start();
  Workbook book = app->Workbooks().Open(kTemplate, true);
  book.Sheets().Item(1).Cells(1, 1).SetValue("x");
  EXPECT_THROW(book.Save(), base::NumberedError);
  book.Close(true);  // SaveChanges:=True on a read-only workbook writes nothing
  EXPECT_EQ(excel_.files().at(kTemplate).Find("Common")->cells.count({1, 1}), 0u);
  Workbook writable = app->Workbooks().Open(kTemplate, false);
  writable.Sheets().Item(1).Cells(1, 1).SetValue("y");
  writable.Close(true);
  EXPECT_EQ(excel_.files().at(kTemplate).Find("Common")->cells.at({1, 1}).text, "y");
  app->Quit();
  EXPECT_EQ(app->Workbooks().Count(), 0);
  app.reset();
  EXPECT_FALSE(excel_.userControl()) << "a quit Excel is not handed to the user";
  EXPECT_EQ(excel_.ReferencesHeldOutside(), 0);
}

TEST_F(WindowsOnlyComEngineTest, OpenTextNamesEveryArgumentAndTheDumpOpensAsTheActiveWorkbook) {
  auto app = Start();
  app->SetVisible(true);
  OpenTextOptions options;
  options.fileName = "C:\\VOLTARIS\\volt_report.txt";
  for (int column = 1; column <= 20; ++column)
    options.fieldInfo.emplace_back(column, XlColumnDataType::xlTextFormat);
  app->Workbooks().OpenText(options);
  Sheet sheet = app->ActiveWorkbook().Sheets().Item(1);
  EXPECT_EQ(sheet.Name(), "volt_report");
  sheet.Cells().Select();
  sheet.Cells().EntireColumn().AutoFit();
  sheet.Range("A1").Select();

  std::map<std::string, std::string> expected = {{"filename", "C:\\VOLTARIS\\volt_report.txt"},
                                                 {"origin", "2"},
                                                 {"startrow", "1"},
                                                 {"datatype", "1"},
                                                 {"textqualifier", "-4142"},
                                                 {"consecutivedelimiter", "0"},
                                                 {"tab", "-1"},
                                                 {"semicolon", "0"},
                                                 {"comma", "0"},
                                                 {"space", "0"},
                                                 {"other", "0"}};
  std::string pairs;
  for (int column = 1; column <= 20; ++column)
    pairs += (column > 1 ? "," : "") + std::to_string(column) + ":2";
  expected["fieldinfo"] = pairs;
  EXPECT_EQ(excel_.lastOpenText(), expected);
}

TEST_F(WindowsOnlyComEngineTest, ExcelFailuresArriveAsTheirRunTimeNumbers) {
  excel_.FailCall("Name=", 1, kExcelError, 0, "Det går inte att byta namn på ett blad");
  excel_.FailCall("SaveAs", 1, 0, 70, "Åtkomst nekad");
  excel_.FailCall("Copy", 1, static_cast<HRESULT>(0x800A0044));
  excel_.FailCall("Select", 1, static_cast<HRESULT>(0x800706BA));
  auto app = Start();
  Workbook book = app->Workbooks().Open(kTemplate, false);
  const auto numberOf = [](auto&& call) {
    try {
      call();
    } catch (const base::NumberedError& error) {
      return std::to_string(error.number()) + " " + error.description();
    }
    return std::string("no error");
  };
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(1).SetName("Ny"); }),
            "1004 Det går inte att byta namn på ett blad");
  EXPECT_EQ(numberOf([&] { book.SaveAs("C:\\R\\Lista.xlsx"); }), "70 Åtkomst nekad");
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(2).CopyAfter(book.Sheets().Item(2)); }),
            "68 Enheten är inte tillgänglig");
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(2).Select(); }).substr(0, 12), "-2147023174 ");
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(9); }), "9 Indexet ligger utanför intervallet");
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(1).SetName("a/b"); }).substr(0, 5), "1004 ");
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(1).SetName("Mall"); }).substr(0, 5), "1004 ");
  EXPECT_EQ(numberOf([&] { book.Sheets().Item(1).Name(); }), "no error");
}

TEST_F(WindowsOnlyComEngineTest, ABlockWithARefusedCellIsWrittenCellByCellSkippingOnlyThatCell) {
  FakeSheet page{"Mall", {}, {}, {}};
  page.lockedCells.insert({11, 2});
  excel_.AddFile("C:\\Mallar\\skyddad.xlsx", FakeFile{{page}});
  for (const bool combine : {false, true}) {
    auto app = Start(combine);
    Workbook book = app->Workbooks().Open("C:\\Mallar\\skyddad.xlsx", false);
    Sheet sheet = book.Sheets().Item(1);
    for (int row = 10; row <= 12; ++row) {
      for (int column = 1; column <= 3; ++column) {
        try {
          sheet.Cells(row, column).SetValue(std::to_string(row) + "/" + std::to_string(column));
        } catch (const base::NumberedError& error) {
          EXPECT_EQ(error.number(), kApplicationDefined);
          EXPECT_FALSE(combine) << "a combined write reports nothing for a skipped cell";
        }
      }
    }
    book.SaveAs("C:\\R\\skyddad.xlsx");
    const FakeSheet& saved = excel_.files().at("C:\\R\\skyddad.xlsx").sheets[0];
    EXPECT_EQ(saved.cells.size(), 8u) << "combine=" << combine;
    EXPECT_EQ(saved.cells.count({11, 2}), 0u);
    EXPECT_EQ(saved.cells.at({12, 3}).text, "12/3");
    book.Close(false);
  }
}

TEST_F(WindowsOnlyComEngineTest, CombinedWritesNeverReachACellTheProgramDidNotWrite) {
  auto app = Start(true);
  Workbook book = app->Workbooks().Open(kTemplate, false);
  Sheet page = book.Sheets().Item(2);
  const int before = excel_.CallsOf("Value=");
  for (int row = 10; row <= 12; ++row) {
    for (const int column : {1, 2, 4}) page.Cells(row, column).SetValue("r" + std::to_string(row));
  }
  page.Cells(10, 2).SetValue("");  // written twice: the last text counts
  EXPECT_EQ(excel_.CallsOf("Value=") - before, 0) << "held back until something else is asked";
  EXPECT_EQ(page.Cells(10, 3).Value(), "mallens text");
  EXPECT_EQ(excel_.CallsOf("Value=") - before, 2) << "A10:B12 and D10:D12";
  EXPECT_EQ(page.Cells(10, 1).Value(), "r10");
  EXPECT_EQ(page.Cells(10, 2).Value(), "");
  EXPECT_EQ(page.Cells(12, 4).Value(), "r12");
}

TEST(WindowsOnlyExcelCreation, WithoutExcelInstalledCreationFailsAsCreateObjectDoes) {
  try {
    CreateApplication(EngineKind::kExcelAutomation);
    FAIL() << "Excel.Application was created; this machine has no Excel";
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kCannotCreateObject);
    EXPECT_EQ(error.description(), "ActiveX-komponenten kan inte skapa objektet");
  }
}

}  // namespace
}  // namespace sw::excel
