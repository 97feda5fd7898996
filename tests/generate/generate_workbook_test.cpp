// GenerateWorkbook against the recording double: the workbooks whole runs leave, and every way a run
// ends early.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "base/windows_path.h"
#include "generate/page_count.h"
#include "generate/page_text.h"
#include "generation_fixture.h"

namespace sw::generate {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GenerateWorkbookTest : public ::testing::Test, public GenerationFixture {};

using Sheet = excel::Recording::SheetState;
using Cells = std::map<std::pair<int, int>, std::string>;

// The report rows a page holds from row `firstRow` on: items `first` to `last` of the fixture's data
// (W<n>, X<n> and M<n> in columns A, B and D; the "!" column C is not written).
Cells RowsOf(int firstRow, int first, int last) {
  Cells cells;
  for (int n = first, row = firstRow; n <= last; ++n, ++row) {
    const std::string i = std::to_string(n);
    cells[{row, 1}] = "W" + i;
    cells[{row, 2}] = "X" + i;
    cells[{row, 4}] = "M" + i;
  }
  return cells;
}

// The cells of `sheet` from row `fromRow` down.
Cells CellsFrom(const Sheet& sheet, int fromRow) {
  Cells cells;
  for (const auto& [at, text] : sheet.cells) {
    if (at.first >= fromRow) cells[at] = text;
  }
  return cells;
}

// A page's head: its number (F1), the next page's number or "-" on the last (F2), its placement (B2).
void ExpectPageHead(const Sheet* sheet, const std::string& page, const std::string& next,
                    const std::string& location) {
  ASSERT_NE(sheet, nullptr) << "page " << page;
  EXPECT_EQ(sheet->cells.at({1, 6}), page);
  EXPECT_EQ(sheet->cells.at({2, 6}), next);
  EXPECT_EQ(sheet->cells.at({2, 2}), location);
}

TEST_F(GenerateWorkbookTest, NormalRunMakesThreePagesInOneWorkbook) {
  AddPlacement("+A1", 1, 7);
  inputs.fieldTexts[0] = "Pumpstation Norra";
  const auto outcome = Generate();

  EXPECT_TRUE(outcome.completed);
  EXPECT_THAT(outcome.savedFiles, ElementsAre("/R/Lista.xlsx"));
  EXPECT_THAT(dialogs.messages, IsEmpty());
  const auto& saved = recording.files().at("/R/Lista.xlsx");
  std::vector<std::string> names;
  for (const auto& sheet : saved.sheets) names.push_back(sheet.name);
  EXPECT_THAT(names, ElementsAre("Common", "Mall", "1", "2", "3"));
  const Sheet* common = saved.Find("Common");
  EXPECT_EQ(common->cells.at({1, 2}), "Pumpstation Norra");
  EXPECT_EQ(common->cells.at({2, 2}), "Kraftbolaget AB");
  EXPECT_EQ(common->cells.at({3, 2}), "AB");
  // Three rows a page from row 10; the last page has no next page.
  ExpectPageHead(saved.Find("1"), "1", "2", "+A1");
  ExpectPageHead(saved.Find("2"), "2", "3", "+A1");
  ExpectPageHead(saved.Find("3"), "3", "-", "+A1");
  EXPECT_EQ(CellsFrom(*saved.Find("1"), 10), RowsOf(10, 1, 3));
  EXPECT_EQ(CellsFrom(*saved.Find("2"), 10), RowsOf(10, 4, 6));
  EXPECT_EQ(CellsFrom(*saved.Find("3"), 10), RowsOf(10, 7, 7));
  // The template itself is only read.
  EXPECT_EQ(recording.files().at(TemplateEnginePath()).sheets.size(), 2u);
  EXPECT_THAT(pointers, ElementsAre(MousePointer::kHourglass, MousePointer::kDefault));
}

TEST_F(GenerateWorkbookTest, RemembersChoicesAndAsksForTheTargetAsTheProgramAlwaysDid) {
  AddPlacement("+A1", 1, 1);
  inputs.sheetNumberText = "007";
  inputs.templateFile = "Lista.XLSM";
  recording.AddWorkbookFile(EnginePath(std::string(kFolder) + "\\Lista.XLSM"), {"Common", "Mall"});
  dialogs.fileAnswers = {std::string("C:\\Rapporter\\Pump.XLSM")};
  Generate();

  ASSERT_EQ(dialogs.fileRequests.size(), 1u);
  const auto& request = dialogs.fileRequests[0];
  EXPECT_EQ(request.kind, base::FileDialogRequest::Kind::kSave);
  EXPECT_EQ(request.title, "Ange filnamn för fil som skall skapas");
  EXPECT_EQ(request.filters, (std::vector<base::FileFilter>{{"(Kalkylblad *.xlsm)", "*.xlsm"}}));
  EXPECT_EQ(request.initialFolder, "/program/");
  EXPECT_EQ(request.fileName, "");
  EXPECT_TRUE(request.confirmOverwrite);
  EXPECT_EQ(Setting("LastVoltDmp"), "C:\\VOLTARIS\\volt_report.txt");
  EXPECT_EQ(Setting("LastRdsDir"), "data/generation");
  EXPECT_EQ(Setting("PageNoLen"), "3");
  EXPECT_EQ(Setting("ResultPath"), "C:\\Rapporter\\");
  EXPECT_EQ(inputs.targetPath, "C:\\Rapporter\\Pump.XLSM");
  const auto& saved = recording.files().at(EnginePath("C:\\Rapporter\\Pump.XLSM"));
  EXPECT_EQ(saved.Find("007")->cells.at({1, 6}), "007");
  EXPECT_EQ(saved.Find("007")->cells.at({2, 6}), "-");
}

// A run names and numbers its pages with these texts ("007" in RemembersChoicesAndAsksForTheTarget…).
TEST(PageTextTest, PaddedToTheStartNumbersLength) {
  const std::pair<int, int> cases[] = {{7, 3}, {10, 2}, {100, 2}, {1, 1}, {0, 1}};
  const char* texts[] = {"007", "10", "100", "1", "0"};
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(PageText(cases[i].first, cases[i].second), texts[i]);
  }
}

// CountPages foresees the pages the run makes, which the counter limit and the progress rely on.
TEST_F(GenerateWorkbookTest, PlacementsManualBreaksAndFullPagesStartPagesAsTheRowsSayAndAsCounted) {
  AddData("W0", "X0", "-", "M0");  // before any head: on the common sheet, no page of its own
  AddPlacement("+A1", 1, 3);       // fills page 1 exactly
  AddPlacement("+A2", 4, 4);       // the green row after a full page starts only one page; W7 a third
  AddTitle("");                    // manual break keeps "+A2"
  AddData("W8", "X8", "-", "M8");
  AddTitle("+B1");
  AddTitle("+B2");  // two green rows: an empty page for +B1
  AddData("W9", "X9", "-", "M9");
  EXPECT_EQ(CountPages(table, 3, false), 6);
  EXPECT_EQ(CountPages(table, 3, true), 1);
  Generate();
  const auto& saved = recording.files().at("/R/Lista.xlsx");
  EXPECT_EQ(saved.Find("Common")->cells.at({10, 1}), "W0");
  std::vector<std::string> names;
  for (const auto& sheet : saved.sheets) names.push_back(sheet.name);
  EXPECT_THAT(names, ElementsAre("Common", "Mall", "1", "2", "3", "4", "5", "6"));
  const char* locations[] = {"+A1", "+A2", "+A2", "+A2", "+B1", "+B2"};
  const char* firstRows[] = {"W1", "W4", "W7", "W8", nullptr, "W9"};
  for (int page = 1; page <= 6; ++page) {
    const auto* sheet = saved.Find(std::to_string(page));
    EXPECT_EQ(sheet->cells.at({2, 2}), locations[page - 1]) << page;
    const char* first = firstRows[page - 1];
    EXPECT_EQ(sheet->cells.count({10, 1}) ? sheet->cells.at({10, 1}) : "", first ? first : "") << page;
  }
  EXPECT_EQ(saved.Find("6")->cells.at({2, 6}), "-");
}

TEST_F(GenerateWorkbookTest, SingleSheetRunWritesOneFilePerPageAndNeverTheTarget) {
  AddPlacement("+A1", 1, 2);
  AddPlacement("+A2", 3, 1);
  inputs.singleSheet = true;
  const auto outcome = Generate();

  EXPECT_EQ(warning.shown, 1);
  EXPECT_TRUE(outcome.completed);
  EXPECT_THAT(outcome.savedFiles, ElementsAre("/R/Lista-1.xlsx", "/R/Lista-2.xlsx"));
  EXPECT_EQ(recording.files().count("/R/Lista.xlsx"), 0u);
  // Each file holds its one page, the page sheet renamed to the page's number; the rows of the page
  // before are cleared, not carried over.
  const auto& first = recording.files().at("/R/Lista-1.xlsx");
  ExpectPageHead(first.Find("1"), "1", "2", "+A1");
  EXPECT_EQ(CellsFrom(*first.Find("1"), 10), RowsOf(10, 1, 2));
  const auto& second = recording.files().at("/R/Lista-2.xlsx");
  ExpectPageHead(second.Find("2"), "2", "-", "+A2");
  EXPECT_EQ(CellsFrom(*second.Find("2"), 10), RowsOf(10, 3, 3));
  EXPECT_TRUE(state.singleSheetSavePending);
}

TEST_F(GenerateWorkbookTest, SecondSingleSheetRunSavesTheTemplateInPlaceFirst) {
  AddPlacement("+A1", 1, 1);
  inputs.singleSheet = true;
  Generate();
  EXPECT_EQ(recording.files().at(TemplateEnginePath()).sheets[1].name, "Mall");

  dialogs.fileAnswers = {std::string("/R/Lista.xlsx")};
  inputs.fieldTexts[0] = "Andra körningen";
  const auto outcome = Generate();
  const auto& overwritten = recording.files().at(TemplateEnginePath());
  EXPECT_EQ(overwritten.Find("Common")->cells.at({1, 2}), "Andra körningen");
  EXPECT_THAT(outcome.savedFiles, ElementsAre("data/generation\\Lista.xlsx", "/R/Lista-1.xlsx"));
}

TEST_F(GenerateWorkbookTest, DynamicRunFillsTheCommonSheetWithBreaksBeforeEachLaterPlacement) {
  UseIni("dynamic.ini");
  AddPlacement("+A1", 1, 2);
  AddPlacement("+A2", 3, 3);
  AddTitle("");
  AddData("W6", "X6", "-", "M6");
  const auto outcome = Generate();

  // Every row on the common sheet from row 10, a manual break above the first row of each later
  // placement, and the last page marked as such.
  const Sheet* common = recording.files().at("/R/Lista.xlsx").Find("Common");
  ASSERT_NE(common, nullptr);
  EXPECT_EQ(CellsFrom(*common, 10), RowsOf(10, 1, 6));
  EXPECT_EQ(common->pageBreakRows, (std::set<int>{12, 15}));
  EXPECT_EQ(common->cells.at({2, 6}), "-");
  // The closing format pass gives the written rows the second data row's formats and draws a line
  // under the row below the data (formats are not part of the recorded sheet).
  EXPECT_THAT(recording.lines(),
              ::testing::IsSupersetOf({std::string("Sheets(1).Rows(\"12:16\").Select"),
                                       std::string("Selection.PasteSpecial Paste:=-4122"),
                                       std::string("Sheets(1).Cells(16, 4).Select"),
                                       std::string("Selection.Borders(9).Weight = -4138")}));
  EXPECT_TRUE(outcome.completed);
  EXPECT_TRUE(state.dynamicLength);
}

struct EarlyExit {
  const char* name;
  std::function<void(GenerationFixture&)> arrange;
  std::vector<std::string> messages;
  int applications;
  bool quitsExcel = false;  // a template it cannot use: Excel is not left running
};

class EarlyExitTest : public ::testing::TestWithParam<EarlyExit>, public GenerationFixture {};

TEST_P(EarlyExitTest, EndsWithItsMessageAndStartsNoMoreThanItMust) {
  AddPlacement("+A1", 1, 2);
  GetParam().arrange(*this);
  const auto outcome = Generate();
  EXPECT_FALSE(outcome.completed);
  EXPECT_EQ(MessageTexts(), GetParam().messages);
  EXPECT_EQ(recording.applicationsCreated(), GetParam().applications);
  EXPECT_THAT(outcome.savedFiles, IsEmpty());
  if (GetParam().quitsExcel) {
    EXPECT_EQ(recording.lines().back(), "Quit");
  }
  if (!pointers.empty()) {
    EXPECT_EQ(pointers.back(), MousePointer::kDefault);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Exits, EarlyExitTest,
    ::testing::Values(
        EarlyExit{"NoTemplate",
                  [](GenerationFixture& f) { f.inputs.templateFile = "  "; },
                  {"Fel: Ingen Excelmall vald."},
                  0},
        EarlyExit{"NoData",
                  [](GenerationFixture& f) { f.table.SetRows(1); },
                  {"Fel: Ingen data att överföra till Excel."},
                  0},
        EarlyExit{"DialogCancelled", [](GenerationFixture& f) { f.dialogs.fileAnswers.clear(); }, {}, 0},
        EarlyExit{"WarningCancelled",
                  [](GenerationFixture& f) {
                    f.inputs.singleSheet = true;
                    f.warning.answer = {false, false};
                  },
                  {},
                  0},
        EarlyExit{
            "NoSheetSection",
            [](GenerationFixture& f) { f.definition.IniPath = "data/generation\\no_sheet_section.ini"; },
            {"Kan ej använda Excel-filen: Ini-filen " +
             base::DisplayPath("data/generation\\no_sheet_section.ini") + "\rsaknar sektionen [Sheet]."},
            0},
        EarlyExit{"MissingSheet",
                  [](GenerationFixture& f) {
                    f.recording.AddWorkbookFile(f.TemplateEnginePath(), {"Framsida", "Mall"});
                  },
                  {"Sheetwright: Fliken 'Common' saknas i excelfilen",
                   "Sheetwright: Redigera mallfilen så att den uppfyller kraven."},
                  1,
                  true},
        EarlyExit{"PageAboveTheSheet",
                  [](GenerationFixture& f) { f.UseIni("rows_above_the_sheet.ini"); },
                  {"Fel: Sidans rader ligger ovanför rad 1 (STARTROW -5, ENDROW -1), så ingen rad ur "
                   "rapporten skulle skrivas.\rRedigera ini-filen " +
                   base::DisplayPath("data/generation\\rows_above_the_sheet.ini") + "."},
                  0},
        EarlyExit{"NonNumericStart",
                  [](GenerationFixture& f) { f.inputs.sheetNumberText = "A1"; },
                  {"Fel: 13 - Typerna matchar inte"},
                  1},
        EarlyExit{"ExcelCannotStart",
                  [](GenerationFixture& f) { f.recording.FailCall("CreateObject", 1, 429); },
                  {"Active-X fel: Kan ej starta Microsoft Excel.\rKontrollera installationen."},
                  0},
        EarlyExit{"TargetInUse",
                  [](GenerationFixture& f) { f.recording.FailCall("SaveAs", 1, 70); },
                  {"Filfel: Filen används, kan ej skriva över.\rAnge annat filnamn"},
                  1},
        EarlyExit{"DeviceUnavailable",
                  [](GenerationFixture& f) { f.recording.FailCall("Open", 1, 68); },
                  {"Sheetwright: Enheten ej läsbar/tillgänglig."},
                  1},
        // Saved as .xlsx, a macro template's result would lose its macros. (An .xlsm target is taken:
        // RemembersChoicesAndAsksForTheTargetAsTheProgramAlwaysDid.)
        EarlyExit{"MacroTemplateToAnXlsxTarget",
                  [](GenerationFixture& f) {
                    f.inputs.templateFile = "Lista.XLSM";
                    f.recording.AddWorkbookFile(EnginePath(std::string(f.kFolder) + "\\Lista.XLSM"),
                                                {"Common", "Mall"});
                    f.dialogs.fileAnswers = {std::string("C:\\Rapporter\\Pump.xlsx")};
                  },
                  {"Fel: Mallen Lista.XLSM innehåller makron, som inte kan sparas i en .xlsx-fil.\r"
                   "Ange ett filnamn som slutar på .xlsm."},
                  0},
        // The command line has no window to keep the template's content beside it.
        EarlyExit{"CommandLineWouldWriteIntoTheTemplate",
                  [](GenerationFixture& f) {
                    f.UseIni("dynamic.ini");
                    f.inputs.singleSheet = true;
                    f.services.mayWriteIntoTemplate = false;
                  },
                  {"Fel: Mallen har dynamisk sidlängd och ger inga sidor att spara var för sig: en fil per "
                   "sida skulle spara över själva mallen.\rGenerera utan en fil per sida."},
                  0},
        EarlyExit{"ExhaustedMemory",
                  [](GenerationFixture& f) {
                    f.services.createExcel = []() -> std::unique_ptr<excel::Application> {
                      throw std::bad_alloc();
                    };
                  },
                  {"Fel: 7 - Slut på minne vid generering av /R/Lista.xlsx."},
                  0},
        // The engine writes Open XML: a name that promises the binary format is refused once chosen.
        EarlyExit{
            "TargetNamedForAnotherFormat",
            [](GenerationFixture& f) { f.dialogs.fileAnswers = {std::string("C:\\Rapporter\\Pump.xlsb")}; },
            {"Fel: Filen C:\\Rapporter\\Pump.xlsb kan inte skapas: ändelsen .xlsb anger ett annat format "
             "än den arbetsbok som skrivs.\rAnge ett filnamn som slutar på .xlsx eller .xlsm."},
            0}),
    [](const auto& exit) { return std::string(exit.param.name); });

TEST_F(GenerateWorkbookTest, FaultyIniIsOpenedForEditing) {
  UseIni("too_few_entries.ini");
  AddPlacement("+A1", 1, 1);
  Generate();
  EXPECT_THAT(launcher.edited, ElementsAre("data/generation\\too_few_entries.ini"));
  EXPECT_TRUE(state.iniEditRequested);
  EXPECT_TRUE(definition.IniError);

  UseIni("three_rows.ini");
  dialogs.fileAnswers = {std::string("/R/Lista.xlsx")};
  EXPECT_TRUE(Generate().completed);
  EXPECT_FALSE(state.iniEditRequested);
}

TEST_F(GenerateWorkbookTest, CancelledDialogClearsTheTargetAndBlankStartBecomesOne) {
  AddPlacement("+A1", 1, 1);
  inputs.targetPath = "/R/Förra.xlsx";
  inputs.sheetNumberText = "  ";
  dialogs.fileAnswers.clear();
  Generate();
  EXPECT_EQ(inputs.targetPath, "");
  EXPECT_EQ(inputs.sheetNumberText, "1");
  EXPECT_EQ(Setting("PageNoLen"), "1");
}

TEST_F(GenerateWorkbookTest, NameWithoutXlsKeepsThePreviousTarget) {
  AddPlacement("+A1", 1, 1);
  inputs.targetPath = "/R/Förra.xlsx";
  dialogs.fileAnswers = {std::string("/R/rapport.ods")};
  const auto outcome = Generate();
  EXPECT_THAT(outcome.savedFiles, ElementsAre("/R/Förra.xlsx"));
  EXPECT_EQ(settings.values.count(std::make_pair(std::string(), std::string("ResultPath"))), 0u);
}

TEST_F(GenerateWorkbookTest, WarningIsShownOnlyWhileSwitchedOnAndCanBeSwitchedOff) {
  AddPlacement("+A1", 1, 1);
  inputs.singleSheet = true;
  warning.answer = {false, true};
  EXPECT_FALSE(Generate().completed);
  EXPECT_EQ(Setting("ShowSingleSheetWarning"), "0");

  dialogs.fileAnswers = {std::string("/R/Lista.xlsx")};
  EXPECT_TRUE(Generate().completed);
  EXPECT_EQ(warning.shown, 1);
}

TEST_F(GenerateWorkbookTest, RejectedCellWriteMidPageIsSkipped) {
  AddPlacement("+A1", 1, 3);
  recording.FailCall("Value=", 10, 1004);  // 3 common texts, 3 page cells, row 10, then row 11 column A
  const auto outcome = Generate();
  EXPECT_TRUE(outcome.completed);
  EXPECT_THAT(dialogs.messages, IsEmpty());
  const auto& page = *recording.files().at("/R/Lista.xlsx").Find("1");
  EXPECT_EQ(page.cells.count({11, 1}), 0u);
  EXPECT_EQ(page.cells.at({11, 2}), "X2");
  EXPECT_EQ(page.cells.at({12, 1}), "W3");
}

// A cell holds 32767 characters: longer texts are cut to that, and the run says once how many were.
TEST_F(GenerateWorkbookTest, TextsLongerThanACellHoldsAreCutAndCounted) {
  AddTitle("+A1");
  AddData(std::string(40000, 'q'), "X1", "-", "M1");
  AddData(std::string(40000, 'q'), "X2", "-", "M2");
  EXPECT_TRUE(Generate().completed);
  EXPECT_THAT(MessageTexts(), ElementsAre("Sheetwright: 2 celler hade längre text än en cell rymmer (32767 "
                                          "tecken) och har kortats till det."));
  const auto& page = *recording.files().at("/R/Lista.xlsx").Find("1");
  EXPECT_EQ(page.cells.at({10, 1}), std::string(32767, 'q'));
  EXPECT_EQ(page.cells.at({11, 1}), std::string(32767, 'q'));
}

TEST_F(GenerateWorkbookTest, PageFileInUseIsToldAndTheRunGoesOn) {
  AddPlacement("+A1", 1, 1);
  AddPlacement("+A2", 2, 1);
  AddPlacement("+A3", 3, 1);
  inputs.singleSheet = true;
  inputs.targetPath = "";
  std::vector<std::string> lookups;
  services.findTopLevelWindow = [&](std::string_view title) { lookups.emplace_back(title); };
  // Saves: page 1's working copy, page 1's file, page 2's working copy, page 2's file, ...
  recording.FailCall("SaveAs", 4, 70);
  const auto outcome = Generate();

  EXPECT_THAT(
      MessageTexts(),
      ElementsAre("Filfel: Filen /R/Lista-2.xls används och kan ej skrivas över.\rAnge annat filnamn."));
  EXPECT_THAT(lookups, ElementsAre("Sheetwright"));
  // A page lost is no success, though the pages after it still get their files.
  EXPECT_FALSE(outcome.completed);
  EXPECT_THAT(outcome.savedFiles, ElementsAre("/R/Lista-1.xlsx", "/R/Lista-3.xlsx"));
  EXPECT_EQ(recording.files().at("/R/Lista-1.xlsx").Find("1")->cells.count({11, 1}), 0u);
  EXPECT_EQ(recording.files().at("/R/Lista-3.xlsx").Find("3")->cells.at({10, 1}), "W3");
  EXPECT_EQ(pointers.back(), MousePointer::kDefault);
}

TEST(StartNumberValueTest, ReadsNumbersAsVbDoesInArithmetic) {
  const std::pair<const char*, int> numbers[] = {{"1", 1},  {"007", 7}, {" 12 ", 12},
                                                 {"+3", 3}, {"-2", -2}, {"32767", 32767}};
  for (const auto& [text, value] : numbers) EXPECT_EQ(StartNumberValue(text), value) << text;
  const std::pair<const char*, int> failures[] = {{"", kTypeMismatch},    {"A1", kTypeMismatch},
                                                  {"1.5", kTypeMismatch}, {"-", kTypeMismatch},
                                                  {"32768", kOverflow},   {"99999999999", kOverflow}};
  for (const auto& [text, number] : failures) {
    try {
      StartNumberValue(text);
      ADD_FAILURE() << text << " was accepted";
    } catch (const base::NumberedError& error) {
      EXPECT_EQ(error.number(), number) << text;
    }
  }
}

}  // namespace
}  // namespace sw::generate
