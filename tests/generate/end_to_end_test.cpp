// `sheetwright-cli generate` in-process with the package engine on a real template workbook, the
// results read back by a tool that shares no code with ours (openpyxl). Whether the files of every mode
// are valid Open XML is the validator's part of tests/excel_made.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "cli/generate_command.h"
#include "external_tools.h"
#include "process_variable.h"
#include "temp_dir.h"

namespace sw::generate {
namespace {

namespace fs = std::filesystem;
using testing::CommandResult;
using testing::HaveOpenpyxl;

const fs::path kSource = SW_SOURCE_DIR;

struct GenerateRun {
  int status = -1;
  std::string out;
  std::string err;
};

class EndToEndTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new testing::TempDir();
    const fs::path templates = folder_->path() / "Mallar";
    fs::create_directories(templates);
    fs::create_directories(folder_->path() / "Ut");
    fs::copy_file(kSource / "tests/data/templates/title_block.xlsx", templates / "title_block.xlsx");
    fs::copy_file(kSource / "tests/data/generation/three_rows.ini", templates / "title_block.ini");
    testing::SetProcessVariable("SHEETWRIGHT_REGISTRY", (folder_->path() / "registry.reg").string());

    normal_ = new GenerateRun(Generate({"--out", Target("Lista.xlsx"), "--field", "0=Provskåp"}));
    single_ = new GenerateRun(
        Generate({"--out", Target("Blad.xlsx"), "--start", "007", "--single-sheet", "--yes"}));
  }
  static void TearDownTestSuite() {
    delete normal_;
    delete single_;
    delete folder_;
    testing::UnsetProcessVariable("SHEETWRIGHT_REGISTRY");
  }

  static std::string Target(const std::string& name) { return (folder_->path() / "Ut" / name).string(); }
  static std::string Template() { return (folder_->path() / "Mallar" / "title_block.xlsx").string(); }

  // The command as main() runs it, with --dump and --template filled in.
  static GenerateRun Generate(std::vector<std::string> arguments) {
    cli::GenerateOptions options;
    options.dump = (kSource / "tests/data/generation/seven_rows_one_placement.txt").string();
    options.templateWorkbook = Template();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const std::string& flag = arguments[i];
      if (flag == "--dump") options.dump = arguments[++i];
      if (flag == "--out") options.target = arguments[++i];
      if (flag == "--template") options.templateWorkbook = arguments[++i];
      if (flag == "--start") options.start = arguments[++i];
      if (flag == "--field") options.fields.push_back(arguments[++i]);
      if (flag == "--single-sheet") options.singleSheet = true;
      if (flag == "--yes") options.yes = true;
    }
    std::ostringstream out;
    std::ostringstream err;
    GenerateRun run;
    run.status = cli::RunGenerate(options, out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
  }

  static CommandResult ReadBack(const std::string& file, std::vector<std::string> expectations) {
    expectations.insert(expectations.begin(), file);
    return testing::RunPython(kSource / "tests/generate/check_generated_workbook.py", expectations);
  }

  static testing::TempDir* folder_;
  static GenerateRun* normal_;
  static GenerateRun* single_;
};
testing::TempDir* EndToEndTest::folder_ = nullptr;
GenerateRun* EndToEndTest::normal_ = nullptr;
GenerateRun* EndToEndTest::single_ = nullptr;

TEST_F(EndToEndTest, CommandPrintsEveryWorkbookWritten) {
  EXPECT_EQ(normal_->status, 0) << normal_->err;
  EXPECT_EQ(normal_->out, Target("Lista.xlsx") + "\n");
  EXPECT_EQ(normal_->err, "");

  EXPECT_EQ(single_->status, 0) << single_->err;
  EXPECT_EQ(single_->out,
            Target("Blad-007.xlsx") + "\n" + Target("Blad-008.xlsx") + "\n" + Target("Blad-009.xlsx") + "\n");
  EXPECT_NE(single_->err.find("Varning!: Om filer redan existerar"), std::string::npos) << single_->err;
  EXPECT_FALSE(fs::exists(Target("Blad.xlsx")));
}

TEST_F(EndToEndTest, PagesHoldTheirNumbersPlacementsRowsAndPictures) {
  ASSERT_TRUE(HaveOpenpyxl()) << "python3-openpyxl or python3-pil is missing (scripts/setup.sh installs it)";
  // Which row lands on which page is the run's rule (generate_workbook_test); here the real engine
  // carries a run's cells, pictures and print areas to a reader of its own.
  // B10 holds a number written as text; C is the "!" of COLUMNS.
  std::vector<std::string> expected = {"sheets=Common,Mall,1,2,3", "cell:Common!B1=Provskåp",
                                       "cell:Common!B2=Kraftbolaget AB", "cell:Mall!A10="};
  for (const char* cell : {"1!A10=X1", "1!B10=1", "1!C10=", "1!D10=L1", "3!B10=7", "3!A11="})
    expected.push_back(std::string("cell:") + cell);
  for (int page = 1; page <= 3; ++page) {
    const std::string n = std::to_string(page);
    expected.push_back("cell:" + n + "!B2=+A1 Kopplingsskåp");
    expected.push_back("cell:" + n + "!F1=" + n);
    expected.push_back("cell:" + n + "!F2=" + (page == 3 ? std::string("-") : std::to_string(page + 1)));
    expected.push_back("images:" + n + "=1");
    expected.push_back("print_area:" + n + "=$A$1:$F$40");
    expected.push_back("cached:" + n + "!B3=");  // the template's result for =Common!B1 is stale
  }
  const auto result = ReadBack(Target("Lista.xlsx"), expected);
  EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(EndToEndTest, SingleSheetFilesArePaddedAndEmptiedPerPage) {
  ASSERT_TRUE(HaveOpenpyxl()) << "python3-openpyxl or python3-pil is missing (scripts/setup.sh installs it)";
  const auto first =
      ReadBack(Target("Blad-007.xlsx"), {"sheets=Common,007", "cell:007!F1=007", "cell:007!F2=008",
                                         "cell:007!B12=3", "images:007=1", "print_area:007=$A$1:$F$40"});
  EXPECT_EQ(first.status, 0) << first.output;
  const auto last =
      ReadBack(Target("Blad-009.xlsx"), {"sheets=Common,009", "cell:009!F1=009", "cell:009!F2=-",
                                         "cell:009!B10=7", "cell:009!B11=", "cell:009!D12="});
  EXPECT_EQ(last.status, 0) << last.output;
}

// The template was saved with its page sheet in front; the list grows on the common sheet, and the
// breaks before each later placement belong there, not on the sheet that happened to be active.
TEST_F(EndToEndTest, DynamicLengthPutsItsBreaksOnTheSheetThatGetsTheRows) {
  ASSERT_TRUE(HaveOpenpyxl()) << "python3-openpyxl or python3-pil is missing (scripts/setup.sh installs it)";
  const fs::path folder = folder_->path() / "Dynamisk";
  fs::create_directories(folder);
  fs::copy_file(kSource / "tests/data/templates/title_block.xlsx", folder / "lista.xlsx");
  fs::copy_file(kSource / "tests/data/generation/dynamic.ini", folder / "lista.ini");
  const std::string dump =
      "VOLTARIS Rapport\tYttre f\xf6rbindningstabell\tFBLTAY\r\n\r\n"
      "%+A1 Sk\xe5p%\r\n\tX1\t1\tW1\tL1\r\n\tX1\t2\tW2\tL2\r\n"
      "%+A2 Sk\xe5p%\r\n\tX2\t1\tW3\tL3\r\n";
  ASSERT_FALSE(base::WriteFileAtomically(folder / "lista.txt", dump));
  const auto run = Generate({"--dump", (folder / "lista.txt").string(), "--template",
                             (folder / "lista.xlsx").string(), "--out", Target("Dynamisk.xlsx")});
  ASSERT_EQ(run.status, 0) << run.err;

  const auto result = ReadBack(Target("Dynamisk.xlsx"), {"row_breaks:Common=1", "row_breaks:Mall=0",
                                                         "cell:Common!A12=X2"});
  EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(EndToEndTest, TargetThatIsNoExcelFileIsRefusedUpFront) {
  const auto run = Generate({"--out", Target("Lista.ods")});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Fel: Filnamnet"), std::string::npos) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_FALSE(fs::exists(Target("Lista.ods")));
}

TEST_F(EndToEndTest, FolderWhereTheTargetShouldGoStopsTheRunAndTheTemplateStays) {
  const std::string before = *base::ReadWholeFile(Template());

  // A folder where the workbook should go: Kill finds no file, so the run stops before anything is written.
  fs::create_directories(Target("Mapp.xlsx"));
  const auto run = Generate({"--out", Target("Mapp.xlsx")});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("Fel: 75 - "), std::string::npos) << run.err;
  EXPECT_EQ(run.out, "");

  EXPECT_EQ(*base::ReadWholeFile(Template()), before);
}

TEST_F(EndToEndTest, BadFieldIndexIsBadUsage) {
  EXPECT_EQ(Generate({"--out", Target("Fel.xlsx"), "--field", "30=x"}).status, 2);
  EXPECT_EQ(Generate({"--out", Target("Fel.xlsx"), "--field", "ett=x"}).status, 2);
}

TEST_F(EndToEndTest, SingleSheetWithoutYesStopsAtTheWarning) {
  const auto run = Generate({"--out", Target("Nej.xlsx"), "--single-sheet"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_FALSE(fs::exists(Target("Nej-1.xlsx")));
}

}  // namespace
}  // namespace sw::generate
