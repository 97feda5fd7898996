// Generation through the COM engine against a scripted Excel ends with the same sheets and cell
// values as generation through the package engine, with and without combined writes; Excel's
// failures give the messages of the failure table. Also prints the calls each page costs.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

#include "excel/application_factory.h"
#include "excel/com/com_engine_win.h"
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

namespace sw::generate {
namespace {

namespace fs = std::filesystem;
using excel::testing::FakeExcel;
using excel::testing::FakeFile;
using excel::testing::FakeSheet;

// What a comparison looks at: every sheet's name, the texts of its cells in the area generation
// writes, and its manual page breaks.
struct SheetValues {
  std::string name;
  std::map<std::pair<int, int>, std::string> cells;
  int pageBreaks = 0;
  bool operator==(const SheetValues&) const = default;
};
using WorkbookValues = std::vector<SheetValues>;
constexpr int kLastRow = 80;
constexpr int kLastColumn = 10;

std::ostream& operator<<(std::ostream& out, const SheetValues& sheet) {
  out << "\n[" << sheet.name << "] breaks " << sheet.pageBreaks;
  for (const auto& [cell, text] : sheet.cells)
    out << " (" << cell.first << "," << cell.second << ")=" << text;
  return out;
}

WorkbookValues ReadValues(excel::PackageEngine& engine, excel::WorkbookId book) {
  WorkbookValues values;
  for (int i = 1; i <= engine.SheetCount(book); ++i) {
    const excel::SheetRef sheet = engine.SheetAt(book, i);
    SheetValues sheetValues{engine.SheetName(sheet), {}, engine.PageBreakCount(sheet)};
    for (int row = 1; row <= kLastRow; ++row) {
      for (int column = 1; column <= kLastColumn; ++column) {
        std::string text = engine.Value(excel::RangeRef{sheet, row, column, row, column});
        if (!text.empty()) sheetValues.cells[{row, column}] = std::move(text);
      }
    }
    values.push_back(std::move(sheetValues));
  }
  return values;
}

WorkbookValues ReadWithPackageEngine(const std::string& path) {
  excel::PackageEngine engine;
  return ReadValues(engine, engine.OpenWorkbook(path, excel::OpenArguments{.readOnly = true}));
}

FakeFile AsFakeFile(const WorkbookValues& values) {
  FakeFile file;
  for (const auto& sheet : values) {
    FakeSheet fake{sheet.name, {}, {}, {}};
    for (const auto& [cell, text] : sheet.cells) fake.cells[cell] = {text, false};
    file.sheets.push_back(std::move(fake));
  }
  return file;
}

// The template as the scripted Excel holds it: its values as they read once saved (the stand-in
// computes no formulas, and a saved workbook holds no stale formula results) and the sheet it
// opens on.
FakeFile TemplateForFake(const std::string& path) {
  excel::PackageEngine engine;
  const excel::WorkbookId opened = engine.OpenWorkbook(path, excel::OpenArguments{.readOnly = true});
  const int active = engine.SheetIndex(engine.ActiveSheet());
  // Any write makes the saved workbook drop its formula results, as generation's writes do.
  const excel::RangeRef spare{engine.SheetAt(opened, 1), 1000, 100, 1000, 100};
  engine.SetValue(spare, "x");
  engine.ClearContents(spare);
  const std::string bytes = engine.SaveToBytes(opened, fs::path(path).extension().string().substr(1));
  excel::PackageEngine saved;
  FakeFile file = AsFakeFile(ReadValues(saved, saved.OpenBytes(bytes, path, true)));
  file.activeSheet = static_cast<std::size_t>(active - 1);
  return file;
}

WorkbookValues ValuesOf(const FakeFile& file) {
  WorkbookValues values;
  for (const auto& sheet : file.sheets) {
    SheetValues sheetValues{sheet.name, {}, static_cast<int>(sheet.pageBreakRows.size())};
    for (const auto& [cell, value] : sheet.cells) {
      EXPECT_FALSE(value.number) << sheet.name << " (" << cell.first << "," << cell.second
                                 << ") became a number";
      if (cell.first <= kLastRow && cell.second <= kLastColumn) sheetValues.cells[cell] = value.text;
    }
    values.push_back(std::move(sheetValues));
  }
  return values;
}

class FixedWarning final : public SingleSheetWarning {
 public:
  WarningAnswer Show() override { return {true, false}; }
};

struct RunResult {
  GenerationOutcome outcome;
  std::vector<std::string> messages;
};

// One template folder with a template workbook and its INI, and a report of three placements.
class GenerationComparison {
 public:
  GenerationComparison(const std::string& workbook, const std::string& ini, int dataColumns)
      : templateFile_(fs::path(workbook).filename().string()), dataColumns_(dataColumns) {
    fs::create_directories(folder_.path() / "Mallar");
    fs::copy_file(workbook, folder_.path() / "Mallar" / templateFile_);
    fs::copy_file(ini, folder_.path() / "Mallar" / (fs::path(templateFile_).stem().string() + ".ini"));
  }

  std::string TemplateFolder() const { return (folder_.path() / "Mallar").string(); }
  std::string TemplatePath() const { return TemplateFolder() + "\\" + templateFile_; }
  std::string Target(const std::string& folder, const std::string& name) const {
    fs::create_directories(folder_.path() / folder);
    return (folder_.path() / folder / name).string();
  }

  // `rows` data rows for each of three placements, the second page start a manual break.
  void AddReport(int rows) {
    for (const std::string_view title : {"+A1 Kopplingsskåp", "", "+B2 Motor"}) {
      const std::string_view head[] = {title};
      report::AddGridRow(table_, head, table_.Rows(), report::kTitleGreen);
      for (int i = 0; i < rows; ++i) {
        const std::string n = std::to_string(table_.Rows());
        std::vector<std::string> texts = {"", "W" + n};
        for (int column = 2; column <= dataColumns_; ++column) texts.push_back(column == 3 ? "-" : "00" + n);
        std::vector<std::string_view> fields(texts.begin(), texts.end());
        report::AddGridRow(table_, fields, table_.Rows(), report::kDefaultBack);
      }
    }
  }

  RunResult Generate(const ApplicationFactory& factory, const std::string& target, bool singleSheet) {
    sw::testing::ScriptedDialogs dialogs;
    sw::testing::MemorySettings settings;
    sw::testing::RecordingLauncher launcher;
    FixedWarning warning;
    dialogs.fileAnswers.push_back(target);
    templates::TemplateDefinition definition;
    templates::FieldPanel fields;
    definition.IniPath = templates::FindIniForTemplate(TemplateFolder(), templateFile_).iniPath;
    if (!definition.IniPath.empty()) {
      session::ApplyCommonFields(templates::ReadCommonFields(definition.IniPath), definition, fields, table_,
                                 [] { return std::string("2026-11-23"); });
    }
    GenerationInputs inputs{table_,
                            "1",
                            TemplateFolder(),
                            templateFile_,
                            "C:\\VOLTARIS\\volt_report.txt",
                            TemplateFolder(),
                            {},
                            singleSheet,
                            {}};
    for (const auto& entry : fields.entries) inputs.fieldTexts.push_back(entry.text);
    GenerationServices services{settings, dialogs, warning, launcher, factory, "C:\\program\\"};
    GenerationState state;
    RunResult result;
    result.outcome = GenerateWorkbook(inputs, definition, state, services);
    state = GenerationState();  // lets go of Excel, as the next run or the program's end does
    for (const auto& message : dialogs.messages) {
      result.messages.push_back(base::EffectiveTitle(message) + ": " + message.text);
    }
    return result;
  }

  static ApplicationFactory ComFactory(FakeExcel& excel, bool combineWrites) {
    return [&excel, combineWrites] {
      return std::make_unique<excel::Application>(excel::com::CreateComEngine(
          [&excel](IDispatch** application) { return excel.CreateApplication(application); },
          excel::com::ComEngineOptions{.combineWrites = combineWrites}));
    };
  }

  // A scripted Excel whose template file holds what the package engine reads from the real one.
  void Prime(FakeExcel& excel) const {
    excel.AddFile(EnginePath(TemplatePath()), TemplateForFake(EnginePath(TemplatePath())));
  }

 private:
  sw::testing::TempDir folder_;
  std::string templateFile_;
  int dataColumns_;
  report::ReportTable table_;
};

const fs::path kData = sw::testing::DataFile("");

GenerationComparison TitleBlock(const std::string& ini) {
  return GenerationComparison((kData / "templates" / "title_block.xlsx").string(),
                              (kData / "generation" / ini).string(), 4);
}

void ExpectSameRun(GenerationComparison& run, bool singleSheet) {
  const RunResult expected = run.Generate({}, run.Target("paket", "Lista.xlsx"), singleSheet);
  ASSERT_TRUE(expected.outcome.completed);
  ASSERT_FALSE(expected.outcome.savedFiles.empty());
  for (const bool combine : {false, true}) {
    SCOPED_TRACE(combine ? "combined writes" : "one call per cell");
    FakeExcel excel;
    run.Prime(excel);
    const RunResult actual = run.Generate(GenerationComparison::ComFactory(excel, combine),
                                          run.Target("com", "Lista.xlsx"), singleSheet);
    EXPECT_TRUE(actual.outcome.completed);
    EXPECT_EQ(actual.messages, expected.messages);
    ASSERT_EQ(actual.outcome.savedFiles.size(), expected.outcome.savedFiles.size());
    for (std::size_t i = 0; i < expected.outcome.savedFiles.size(); ++i) {
      const std::string& file = actual.outcome.savedFiles[i];
      EXPECT_EQ(fs::path(file).filename(), fs::path(expected.outcome.savedFiles[i]).filename());
      ASSERT_EQ(excel.files().count(EnginePath(file)), 1u) << file;
      EXPECT_EQ(ValuesOf(excel.files().at(EnginePath(file))),
                ReadWithPackageEngine(EnginePath(expected.outcome.savedFiles[i])));
    }
    EXPECT_EQ(excel.ReferencesHeldOutside(), 0);
    EXPECT_TRUE(excel.visible());
    EXPECT_TRUE(excel.userControl());
  }
}

TEST(WindowsOnlyComGeneration, NormalRunEndsAsThePackageEngineEnds) {
  GenerationComparison run = TitleBlock("three_rows.ini");
  run.AddReport(7);
  ExpectSameRun(run, false);
}

TEST(WindowsOnlyComGeneration, SingleSheetRunEndsAsThePackageEngineEnds) {
  GenerationComparison run = TitleBlock("three_rows.ini");
  run.AddReport(4);
  ExpectSameRun(run, true);
}

TEST(WindowsOnlyComGeneration, DynamicLengthRunEndsAsThePackageEngineEnds) {
  GenerationComparison run = TitleBlock("dynamic.ini");
  run.AddReport(9);
  ExpectSameRun(run, false);
}

TEST(WindowsOnlyComGeneration, ExcelFailuresGiveTheMessagesOfTheFailureTable) {
  // A page Excel fails on ends the run with its message and saves nothing; a failure of the skipped kind
  // passes, and a save that fails is told by its number.
  const std::string notSaved = "Fel: Genereringen avbröts och arbetsboken har inte sparats: ";
  struct Failure {
    std::string member;
    int occurrence;
    HRESULT scode;
    unsigned short wCode;
    std::string description;
  };
  struct Case {
    std::vector<Failure> failures;
    std::vector<std::string> told;  // a last text ending in ": " is the start of the last message
  };
  const std::vector<Case> cases = {
      {{{"Copy", 2, 0, 68, ""}}, {"Sheetwright: Enheten ej läsbar/tillgänglig.", notSaved}},
      {{{"Copy", 4, static_cast<HRESULT>(0x800A0009), 0, "Indexet ligger utanför intervallet"}},
       {"Fel: 9 - Indexet ligger utanför intervallet", notSaved}},
      {{{"Name=", 3, static_cast<HRESULT>(0x800A03EC), 0, ""},
        {"SaveAs", 2, static_cast<HRESULT>(0x800706BA), 0, "RPC-servern är inte tillgänglig."}},
       {"Fel: -2147023174 - RPC-servern är inte tillgänglig."}},
  };
  for (const Case& each : cases) {
    GenerationComparison run = TitleBlock("three_rows.ini");
    run.AddReport(4);
    FakeExcel excel;
    run.Prime(excel);
    for (const Failure& failure : each.failures) {
      excel.FailCall(failure.member, failure.occurrence, failure.scode, failure.wCode, failure.description);
    }
    const RunResult result =
        run.Generate(GenerationComparison::ComFactory(excel, true), run.Target("fel", "Lista.xlsx"), false);
    ASSERT_EQ(result.messages.size(), each.told.size()) << each.told.front();
    for (std::size_t i = 0; i < each.told.size(); ++i) {
      if (each.told[i].ends_with(": ")) {
        EXPECT_TRUE(result.messages[i].starts_with(each.told[i])) << result.messages[i];
      } else {
        EXPECT_EQ(result.messages[i], each.told[i]);
      }
    }
  }
}

TEST(WindowsOnlyComGeneration, WithoutExcelInstalledTheRunEndsOnTheActiveXMessage) {
  GenerationComparison run = TitleBlock("three_rows.ini");
  run.AddReport(2);
  const RunResult result =
      run.Generate([] { return excel::CreateApplication(excel::EngineKind::kExcelAutomation); },
                   run.Target("utan", "Lista.xlsx"), false);
  EXPECT_FALSE(result.outcome.completed);
  EXPECT_EQ(
      result.messages,
      std::vector<std::string>{"Active-X fel: Kan ej starta Microsoft Excel.\rKontrollera installationen."});
}

// Not a timing: the number of calls that cross into Excel's process, each about a millisecond.
TEST(WindowsOnlyComGeneration, CallsPerPageBeforeAndAfterCombining) {
  struct Case {
    const char* name;
    GenerationComparison run;
    int rows;
  };
  Case cases[] = {
      {"title_block, 3 rows x 3 columns a page", TitleBlock("three_rows.ini"), 9},
      {"yttre_forbindningstabell, 30 rows x 7 columns a page",
       GenerationComparison(SW_SOURCE_DIR "/examples/yttre_forbindningstabell.xlsx",
                            SW_SOURCE_DIR "/examples/yttre_forbindningstabell.ini", 7),
       60},
  };
  for (Case& each : cases) {
    each.run.AddReport(each.rows);
    int perPage[2] = {0, 0};
    for (const bool combine : {false, true}) {
      FakeExcel excel;
      each.run.Prime(excel);
      const RunResult result = each.run.Generate(GenerationComparison::ComFactory(excel, combine),
                                                 each.run.Target("tal", "Lista.xlsx"), false);
      ASSERT_TRUE(result.outcome.completed) << each.name;
      const int pages =
          static_cast<int>(excel.files().at(EnginePath(result.outcome.savedFiles.back())).sheets.size()) - 2;
      ASSERT_GT(pages, 0);
      perPage[combine] = (excel.invokes() + excel.nameLookups()) / pages;
      std::cout << "[ calls    ] " << each.name << (combine ? ", combined" : ", one call per cell") << ": "
                << pages << " pages, " << excel.invokes() << " Invoke + " << excel.nameLookups()
                << " GetIDsOfNames, " << perPage[combine] << " calls a page, "
                << excel.CallsOf("Value=") / pages << " Value writes a page\n";
    }
    EXPECT_LT(perPage[1], perPage[0]) << each.name;
  }
}

}  // namespace
}  // namespace sw::generate
