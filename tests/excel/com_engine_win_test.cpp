// The COM engine against Excel's automation objects answered by the package engine: members reached by
// name with their named arguments, Excel's failures as run-time numbers, combined writes, released
// references and creation where Excel is not installed; and generation through it, which must end with
// the workbooks and messages of generation through the package engine alone.
#include "excel/com/com_engine_win.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

#include "excel/application_factory.h"
#include "excel/automation.h"
#include "excel/cell_address.h"
#include "excel/package/package_engine.h"
#include "fake_excel_win.h"
#include "generate/generate_workbook.h"
#include "generate/run_error.h"
#include "memory_settings.h"
#include "recording_launcher.h"
#include "report/add_grid_row.h"
#include "report/colours.h"
#include "scripted_dialogs.h"
#include "session/template_fields.h"
#include "temp_dir.h"
#include "templates/template_ini.h"

namespace sw::excel {
namespace {

namespace fs = std::filesystem;
using generate::ApplicationFactory;
using testing::FakeExcel;

constexpr HRESULT kExcelError = static_cast<HRESULT>(0x800A03EC);

ApplicationFactory ComFactory(FakeExcel& excel, bool combineWrites) {
  return [&excel, combineWrites] {
    return std::make_unique<Application>(com::CreateComEngine(
        [&excel](IDispatch** application) { return excel.CreateApplication(application); },
        com::ComEngineOptions{.combineWrites = combineWrites}));
  };
}

// Each sheet's name, manual page breaks and non-empty cells in the area generation writes, as text.
std::vector<std::string> Contents(const std::string& path) {
  PackageEngine engine;
  const WorkbookId book = engine.OpenWorkbook(path, OpenArguments{.readOnly = true});
  std::vector<std::string> sheets;
  for (int i = 1; i <= engine.SheetCount(book); ++i) {
    const SheetRef sheet = engine.SheetAt(book, i);
    std::string text = engine.SheetName(sheet) + " breaks " + std::to_string(engine.PageBreakCount(sheet));
    for (int row = 1; row <= 80; ++row) {
      for (int column = 1; column <= 10; ++column) {
        const std::string value = engine.Value(RangeRef{sheet, row, column, row, column});
        if (!value.empty()) text += " " + FormatCellAddress(row, column) + "=" + value;
      }
    }
    sheets.push_back(std::move(text));
  }
  return sheets;
}

class WindowsOnlyComEngineTest : public ::testing::Test {
 protected:
  WindowsOnlyComEngineTest() {
    fs::copy_file(sw::testing::DataFile("templates/title_block.xlsx"), Path("mall.xlsx"));
  }
  std::unique_ptr<Application> Start(bool combineWrites = true) {
    return ComFactory(excel_, combineWrites)();
  }
  std::string Path(const std::string& name) const { return (folder_.path() / name).string(); }

  sw::testing::TempDir folder_;
  FakeExcel excel_;
};

TEST_F(WindowsOnlyComEngineTest, MembersReachTheObjectModelByNameAndExcelStaysOpenWithTheResult) {
  {
    auto app = Start();
    app->SetVisible(true);
    Workbook book = app->Workbooks().Open(Path("mall.xlsx"),
                                          OpenArguments{.updateLinks = true, .readOnly = std::nullopt});
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
    page.Cells(10, 3).SetValue("bort");
    EXPECT_EQ(page.Cells(1, 6).Value(), "007");
    page.Range(page.Cells(10, 3), page.Cells(12, 3)).Select();
    app->Selection().ClearContents();
    page.Rows("12:12").Select();
    app->ActiveSheet().HPageBreaks().Add(app->ActiveCell());
    EXPECT_EQ(page.HPageBreaks().Count(), 1);
    // Copying formats, lines and CutCopyMode reach Excel in the runs of a dynamic-length template:
    // WindowsOnlyComGeneration; AutoFit in the dump's import.
    EXPECT_EQ(app->Workbooks().Count(), 1);
    book.SaveAs(Path("Lista.xlsx"));
    EXPECT_EQ(book.FullName(), Path("Lista.xlsx"));
  }
  EXPECT_EQ(excel_.ReferencesHeldOutside(), 0);
  EXPECT_TRUE(excel_.visible());
  EXPECT_TRUE(excel_.userControl()) << "Excel must outlive the program's last reference";

  PackageEngine saved;
  const WorkbookId book = saved.OpenWorkbook(Path("Lista.xlsx"), OpenArguments{.readOnly = true});
  ASSERT_EQ(saved.SheetCount(book), 3);
  const SheetRef page = saved.SheetAt(book, 3);
  EXPECT_EQ(saved.SheetName(page), "007");
  EXPECT_EQ(saved.Value(RangeRef{page, 1, 6, 1, 6}), "007");
  EXPECT_EQ(saved.Value(RangeRef{page, 5, 2, 5, 2}), "Kabel \"A\" – 1,5 mm²");
  EXPECT_EQ(saved.Value(RangeRef{page, 10, 3, 10, 3}), "");
  EXPECT_EQ(saved.PageBreakCount(page), 1);
}

TEST_F(WindowsOnlyComEngineTest, ReadOnlyCloseAndQuitPassTheirNamedArguments) {
  auto app = Start();
  Workbook book = app->Workbooks().Open(Path("mall.xlsx"), true);
  book.Sheets().Item(1).Cells(30, 1).SetValue("x");
  EXPECT_THROW(book.Save(), base::NumberedError);
  book.Close(false);
  Workbook writable = app->Workbooks().Open(Path("mall.xlsx"), false);
  writable.Sheets().Item(1).Cells(30, 1).SetValue("y");
  writable.Close(true);  // SaveChanges:=True
  EXPECT_EQ(Contents(Path("mall.xlsx"))[0].find("A30=x"), std::string::npos);
  EXPECT_NE(Contents(Path("mall.xlsx"))[0].find("A30=y"), std::string::npos);
  app->Quit();
  EXPECT_EQ(app->Workbooks().Count(), 0);
  app.reset();
  EXPECT_FALSE(excel_.userControl()) << "a quit Excel is not handed to the user";
  EXPECT_EQ(excel_.ReferencesHeldOutside(), 0);
}

// Excel takes every argument by name; each one the program passes shows in the imported cells: tab
// alone separates, consecutive tabs and quotes are kept, the text is in the Windows code page and the
// listed columns stay text.
TEST_F(WindowsOnlyComEngineTest, OpenTextPassesEveryArgumentByNameAndTheDumpOpensAsTheActiveWorkbook) {
  const std::string dump =
      folder_.Write("volt_report.txt", "%+A1%\r\n\"X1\"\t\t007\t\xC3\x85;b,c d\r\n").string();
  auto app = Start();
  app->SetVisible(true);
  OpenTextOptions options;
  options.fileName = dump;
  for (int column = 1; column <= 20; ++column)
    options.fieldInfo.emplace_back(column, XlColumnDataType::xlTextFormat);
  app->Workbooks().OpenText(options);
  Sheet sheet = app->ActiveWorkbook().Sheets().Item(1);
  EXPECT_EQ(sheet.Name(), "volt_report");
  EXPECT_EQ(sheet.Cells(1, 1).Value(), "%+A1%");
  EXPECT_EQ(sheet.Cells(2, 1).Value(), "\"X1\"");
  EXPECT_EQ(sheet.Cells(2, 2).Value(), "");
  EXPECT_EQ(sheet.Cells(2, 3).Value(), "007");
  EXPECT_EQ(sheet.Cells(2, 4).Value(), "\xC3\x83\xE2\x80\xA6;b,c d");
  sheet.Cells().Select();
  sheet.Cells().EntireColumn().AutoFit();
  sheet.Range("A1").EntireColumn().AutoFit();
  sheet.Range("A1").Select();
}

TEST_F(WindowsOnlyComEngineTest, ExcelFailuresArriveAsTheirRunTimeNumbers) {
  excel_.FailCall("Name=", 1, kExcelError, 0, "Det går inte att byta namn på ett blad");
  excel_.FailCall("SaveAs", 1, 0, 70, "Åtkomst nekad");
  excel_.FailCall("Copy", 1, static_cast<HRESULT>(0x800A0044));
  excel_.FailCall("Select", 1, static_cast<HRESULT>(0x800706BA));
  auto app = Start();
  Workbook book = app->Workbooks().Open(Path("mall.xlsx"), false);
  const auto numberOf = [](auto&& call) {
    try {
      call();
    } catch (const base::NumberedError& error) {
      return std::to_string(error.number()) + " " + error.description();
    }
    return std::string("no error");
  };
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { book.Sheets().Item(1).SetName("Ny"); }, "1004 Det går inte att byta namn på ett blad"},
      {[&] { book.SaveAs(Path("Lista.xlsx")); }, "70 Åtkomst nekad"},
      {[&] { book.Sheets().Item(2).CopyAfter(book.Sheets().Item(2)); }, "68 Enheten är inte tillgänglig"},
      {[&] { book.Sheets().Item(2).Select(); }, "-2147023174 "},
      {[&] { book.Sheets().Item(9); }, "9 Indexet ligger utanför intervallet"},
      {[&] { book.Sheets().Item(1).SetName("a/b"); }, "1004 "},
      {[&] { book.Sheets().Item(1).SetName("Mall"); }, "1004 "},
      {[&] { book.Sheets().Item(1).Name(); }, "no error"},
  };
  for (const auto& [call, told] : cases) {
    const std::string got = numberOf(call);
    if (told.ends_with(' ')) {
      EXPECT_TRUE(got.starts_with(told)) << got;
    } else {
      EXPECT_EQ(got, told);
    }
  }
}

TEST_F(WindowsOnlyComEngineTest, ABlockWithARefusedCellIsWrittenCellByCellSkippingOnlyThatCell) {
  excel_.LockCell(11, 2);
  for (const bool combine : {false, true}) {
    auto app = Start(combine);
    Workbook book = app->Workbooks().Open(Path("mall.xlsx"), false);
    Sheet sheet = book.Sheets().Item(2);
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
    book.SaveAs(Path("skyddad.xlsx"));
    book.Close(false);
    const std::string page = Contents(Path("skyddad.xlsx"))[1];
    EXPECT_NE(page.find("A11=11/1"), std::string::npos) << page;
    EXPECT_EQ(page.find("B11="), std::string::npos) << page;
    EXPECT_NE(page.find("C12=12/3"), std::string::npos) << page;
  }
}

TEST_F(WindowsOnlyComEngineTest, CombinedWritesNeverReachACellTheProgramDidNotWrite) {
  auto app = Start(true);
  Workbook book = app->Workbooks().Open(Path("mall.xlsx"), false);
  Sheet page = book.Sheets().Item(2);
  page.Cells(10, 3).SetValue("mallens text");
  page.Cells(10, 3).Value();
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

class FixedWarning final : public generate::SingleSheetWarning {
 public:
  generate::WarningAnswer Show() override { return {true, false}; }
};

struct RunResult {
  generate::GenerationOutcome outcome;
  std::vector<std::string> messages;
};

// One template folder with a template workbook and its INI, and a report of three placements of `rows`
// data rows each, the second page start a manual break.
class GenerationRun {
 public:
  GenerationRun(const fs::path& workbook, const fs::path& ini, int dataColumns, int rows)
      : templateFile_(workbook.filename().string()) {
    fs::create_directories(folder_.path() / "Mallar");
    fs::copy_file(workbook, folder_.path() / "Mallar" / templateFile_);
    fs::copy_file(ini, folder_.path() / "Mallar" / (workbook.stem().string() + ".ini"));
    for (const std::string_view title : {"+A1 Kopplingsskåp", "", "+B2 Motor"}) {
      const std::string_view head[] = {title};
      report::AddGridRow(table_, head, table_.Rows(), report::kTitleGreen);
      for (int i = 0; i < rows; ++i) {
        const std::string n = std::to_string(table_.Rows());
        std::vector<std::string> texts = {"", "W" + n};
        for (int column = 2; column <= dataColumns; ++column) texts.push_back(column == 3 ? "-" : "00" + n);
        std::vector<std::string_view> fields(texts.begin(), texts.end());
        report::AddGridRow(table_, fields, table_.Rows(), report::kDefaultBack);
      }
    }
  }

  RunResult Generate(const ApplicationFactory& factory, const std::string& folder, bool singleSheet = false) {
    const std::string templates = (folder_.path() / "Mallar").string();
    fs::create_directories(folder_.path() / folder);
    sw::testing::ScriptedDialogs dialogs;
    sw::testing::MemorySettings settings;
    sw::testing::RecordingLauncher launcher;
    FixedWarning warning;
    dialogs.fileAnswers.push_back((folder_.path() / folder / "Lista.xlsx").string());
    templates::TemplateDefinition definition;
    templates::FieldPanel fields;
    definition.IniPath = templates::FindIniForTemplate(templates, templateFile_).iniPath;
    if (!definition.IniPath.empty()) {
      session::ApplyCommonFields(templates::ReadCommonFields(definition.IniPath), definition, fields, table_,
                                 [] { return std::string("2026-11-23"); });
    }
    generate::GenerationInputs inputs{
        table_, "1",         templates, templateFile_, "C:\\VOLTARIS\\volt_report.txt", templates,
        {},     singleSheet, {}};
    for (const auto& entry : fields.entries) inputs.fieldTexts.push_back(entry.text);
    generate::GenerationServices services{settings, dialogs, warning, launcher, factory, "C:\\program\\"};
    generate::GenerationState state;
    RunResult result;
    result.outcome = GenerateWorkbook(inputs, definition, state, services);
    state = generate::GenerationState();  // lets go of Excel, as the next run or the program's end does
    for (const auto& message : dialogs.messages)
      result.messages.push_back(base::EffectiveTitle(message) + ": " + message.text);
    return result;
  }

 private:
  sw::testing::TempDir folder_;
  std::string templateFile_;
  report::ReportTable table_;
};

GenerationRun TitleBlock(const char* ini, int rows) {
  return GenerationRun(sw::testing::DataFile("templates/title_block.xlsx"),
                       sw::testing::DataFile(std::string("generation/") + ini), 4, rows);
}

TEST(WindowsOnlyComGeneration, RunsEndAsThePackageEngineEndsAndCombiningSavesCalls) {
  struct Case {
    const char* name;
    GenerationRun run;
    bool singleSheet;
  };
  Case cases[] = {
      {"normal", TitleBlock("three_rows.ini", 7), false},
      {"single sheet", TitleBlock("three_rows.ini", 4), true},
      {"dynamic length", TitleBlock("dynamic.ini", 9), false},
      {"yttre_forbindningstabell, 30 rows x 7 columns a page",
       GenerationRun(SW_SOURCE_DIR "/examples/yttre_forbindningstabell.xlsx",
                     SW_SOURCE_DIR "/examples/yttre_forbindningstabell.ini", 7, 60),
       false},
  };
  for (Case& each : cases) {
    SCOPED_TRACE(each.name);
    const RunResult expected = each.run.Generate({}, "paket", each.singleSheet);
    ASSERT_TRUE(expected.outcome.completed);
    ASSERT_FALSE(expected.outcome.savedFiles.empty());
    int callsPerPage[2] = {0, 0};
    for (const bool combine : {false, true}) {
      SCOPED_TRACE(combine ? "combined writes" : "one call per cell");
      FakeExcel excel;
      const RunResult actual = each.run.Generate(ComFactory(excel, combine), "com", each.singleSheet);
      EXPECT_TRUE(actual.outcome.completed);
      EXPECT_EQ(actual.messages, expected.messages);
      ASSERT_EQ(actual.outcome.savedFiles.size(), expected.outcome.savedFiles.size());
      for (std::size_t i = 0; i < expected.outcome.savedFiles.size(); ++i) {
        EXPECT_EQ(fs::path(actual.outcome.savedFiles[i]).filename(),
                  fs::path(expected.outcome.savedFiles[i]).filename());
        EXPECT_EQ(Contents(generate::EnginePath(actual.outcome.savedFiles[i])),
                  Contents(generate::EnginePath(expected.outcome.savedFiles[i])));
      }
      EXPECT_EQ(excel.ReferencesHeldOutside(), 0);
      EXPECT_TRUE(excel.visible());
      EXPECT_TRUE(excel.userControl());
      // Not a timing: the calls that cross into Excel's process, each about a millisecond.
      const int sheets =
          static_cast<int>(Contents(generate::EnginePath(actual.outcome.savedFiles.back())).size());
      callsPerPage[combine] = excel.crossings() / sheets;
      std::cout << "[ calls    ] " << each.name << (combine ? ", combined" : ", one call per cell") << ": "
                << callsPerPage[combine] << " calls a sheet, " << excel.CallsOf("Value=") / sheets
                << " Value writes a sheet\n";
    }
    EXPECT_LT(callsPerPage[1], callsPerPage[0]);
  }
}

// The messages for each failure are the run's own; this shows a failure in Excel reaches them by its
// number: a page Excel fails on ends the run with its message and saves nothing.
TEST(WindowsOnlyComGeneration, AnExcelFailureEndsTheRunWithTheMessageOfItsNumber) {
  GenerationRun run = TitleBlock("three_rows.ini", 4);
  FakeExcel excel;
  excel.FailCall("Copy", 2, 0, 68);
  const RunResult result = run.Generate(ComFactory(excel, true), "fel");
  ASSERT_EQ(result.messages.size(), 2u);
  EXPECT_EQ(result.messages[0], "Sheetwright: Enheten ej läsbar/tillgänglig.");
  EXPECT_TRUE(result.messages[1].starts_with("Fel: Genereringen avbröts och arbetsboken har inte sparats: "))
      << result.messages[1];
}

}  // namespace
}  // namespace sw::excel
