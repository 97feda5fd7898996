// Workbooks the engine writes, checked by readers that share no code with it. One realistic run
// per file type, and one from a template referring to its own sheet, since LibreOffice and the
// validator take seconds per file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "excel/application_factory.h"
#include "external_tools.h"
#include "temp_dir.h"

namespace sw::excel {
namespace {

namespace fs = std::filesystem;
using testing::HaveLibreOffice;
using testing::HaveOpenpyxl;
using testing::HavePython;
using testing::Quote;
using testing::RunCommand;
using testing::RunPython;
using testing::ValidatorErrors;

const fs::path kSource = SW_SOURCE_DIR;
const fs::path kSelfReferences = kSource / "tests/data/templates/self_references.xlsx";

// The page template (sheet 2) copied after the last sheet and named by its page number, as a run does.
Sheet AppendPage(Application& app, Workbook& book, int page) {
  app.Sheets().Item(2).Select();
  app.Sheets().Item(2).CopyAfter(app.Sheets().Item(app.Sheets().Count()));
  app.Sheets().Item(app.Sheets().Count()).Select();
  app.Sheets().Item(app.Sheets().Count()).SetName(std::to_string(page));
  return book.Worksheets().Item(app.Sheets().Count());
}

// The generation run of a normal-length template: three pages, page breaks and the closing format
// pass on the last page.
void MakePages(const fs::path& templatePath, const fs::path& target) {
  auto app = CreateApplication(EngineKind::kPackage);
  app->SetVisible(true);
  Workbook book = app->Workbooks().Open(templatePath.string(), false);
  book.SaveAs(target.string());
  Sheet common = book.Worksheets().Item(1);
  common.Cells(1, 2).SetValue("Ställverk 8 & <ny>");
  for (int page = 1; page <= 3; ++page) {
    Sheet current = AppendPage(*app, book, page);
    current.Cells(2, 2).SetValue("+A" + std::to_string(page));
    current.Cells(1, 6).SetValue(std::to_string(page));
    current.Cells(2, 6).SetValue(page == 3 ? "-" : std::to_string(page + 1));
    for (int row = 10; row < 40; ++row)
      current.Cells(row, 1).SetValue("W" + std::to_string(page * 100 + row));
  }
  Sheet last = book.Worksheets().Item(5);
  last.Rows("20:20").Select();
  last.HPageBreaks().Add(app->ActiveCell());
  last.Rows("30:30").Select();
  last.HPageBreaks().Add(app->ActiveCell());
  last.Rows("11:11").Select();
  app->Selection().Copy();
  last.Rows("12:39").Select();
  app->Selection().PasteSpecial(XlPasteType::xlPasteFormats);
  for (int column = 1; column <= 6; ++column) {
    last.Cells(40, column).Select();
    app->Selection().Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
  }
  last.Cells(10, 1).Select();
  app->SetCutCopyMode(false);
  book.Save();
}

void MakeMacroCopy(const fs::path& templatePath, const fs::path& target) {
  auto app = CreateApplication(EngineKind::kPackage);
  Workbook book = app->Workbooks().Open(templatePath.string(), true);
  book.Sheets().Item(2).CopyAfter(book.Sheets().Item(2));
  book.Sheets().Item(3).SetName("Sida 1");
  book.Sheets().Item(3).Cells(10, 1).SetValue("W1");
  book.SaveAs(target.string());
}

// From a template whose formulas and names refer to its own sheet: a normal run of three pages, the last one
// finished as a dynamic-length page is: the second data row's formats pasted on the rows below it, a line
// under the rows, the first data cell selected.
void MakeSelfReferringPages(const fs::path& target) {
  auto app = CreateApplication(EngineKind::kPackage);
  Workbook book = app->Workbooks().Open(kSelfReferences.string(), false);
  book.SaveAs(target.string());
  book.Worksheets().Item(1).Cells(1, 2).SetValue("Ställverk 8");
  for (int page = 1; page <= 3; ++page) {
    Sheet current = AppendPage(*app, book, page);
    current.Cells(1, 6).SetValue(std::to_string(page));
    current.Cells(2, 7).SetValue("sida-" + std::to_string(page));
    for (int row = 10; row <= 20; ++row) current.Cells(row, 1).SetValue("W" + std::to_string(row));
  }
  Sheet last = book.Worksheets().Item(6);
  last.Rows("11:11").Select();
  app->Selection().Copy();
  last.Rows("12:20").Select();
  app->Selection().PasteSpecial(XlPasteType::xlPasteFormats);
  last.Rows("21:21").Select();
  app->Selection().Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
  last.Cells(10, 1).Select();
  app->SetCutCopyMode(false);
  book.Save();
}

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

class ExternalReadersTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new testing::TempDir();
    MakePages(kSource / "tests/data/templates/title_block.xlsx", Pages());
    MakeMacroCopy(kSource / "tests/data/templates/title_block.xlsm", Macro());
    MakePages(kSource / "tests/data/templates/title_block_openpyxl.xlsx", Scripted());
    MakeSelfReferringPages(SelfReferring());
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }
  static fs::path Pages() { return folder_->path() / "Lista.xlsx"; }
  static fs::path Macro() { return folder_->path() / "Makro.xlsm"; }
  // From the template as openpyxl wrote it: VML with an idmap, a theme part, no shared strings.
  static fs::path Scripted() { return folder_->path() / "Skript.xlsx"; }
  // Each page must refer to itself, as in Excel.
  static fs::path SelfReferring() { return folder_->path() / "Sidor.xlsx"; }

  static testing::TempDir* folder_;
};
testing::TempDir* ExternalReadersTest::folder_ = nullptr;

TEST_F(ExternalReadersTest, PackageLinterFindsNothing) {
  ASSERT_TRUE(HavePython()) << "python3 is missing (scripts/setup.sh installs it)";
  for (const auto& file : {Pages(), Macro(), Scripted(), SelfReferring()}) {
    const auto result = RunPython(kSource / "tests/excel/package_lint.py", {file.string()});
    EXPECT_EQ(result.status, 0) << file << ":\n" << result.output;
  }
}

TEST_F(ExternalReadersTest, OpenpyxlReadsBackWhatWasWritten) {
  ASSERT_TRUE(HaveOpenpyxl()) << "python3-openpyxl or python3-pil is missing (scripts/setup.sh installs it)";
  const fs::path readBack = kSource / "tests/excel/read_back.py";
  const auto result =
      RunPython(readBack, {Pages().string(), "sheets=Common,Mall,1,2,3", "cell:Common!B1=Ställverk 8 & <ny>",
                           "cell:1!B2=+A1", "cell:3!F2=-", "cell:2!A39=W239",
                           "cell:Mall!A10=", "breaks:3=19,29", "breaks:Mall=", "print_area:3=$A$1:$F$40",
                           "print_titles:2=1:9", "merged:1=A1:D1,B2:D2,B3:D3", "cell:2!B3==Common!B1",
                           // The template's results would be stale now; none is left for readers to show.
                           "cached:2!B3=", "cached:Mall!B3=", "cached:3!I8="});
  EXPECT_EQ(result.status, 0) << result.output;
  const auto macro = RunPython(readBack, {Macro().string(), "sheets=Common,Mall,Sida 1", "cell:Sida 1!A10=W1",
                                          "print_titles:Sida 1=1:9"});
  EXPECT_EQ(macro.status, 0) << macro.output;
  const auto scripted = RunPython(
      readBack, {Scripted().string(), "sheets=Common,Mall,1,2,3", "cell:3!A10=W310", "breaks:3=19,29"});
  EXPECT_EQ(scripted.status, 0) << scripted.output;
}

class LibreOfficeTest : public ExternalReadersTest {
 protected:
  // Comma separated, double quotes, UTF-8, every sheet into a file of its own.
  static constexpr const char* kCsv =
      "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1";
  // Converts `files` into `format` (a --convert-to argument) in folder `out`; the exit status.
  static testing::CommandResult Convert(const std::string& format, const fs::path& out,
                                        const std::vector<fs::path>& files) {
    const std::string profile = "-env:UserInstallation=file://" + (folder_->path() / "lo-profile").string();
    std::string command = "timeout 120 soffice " + Quote(profile) + " --headless --convert-to " +
                          Quote(format) + " --outdir " + Quote(out.string());
    for (const auto& file : files) command += " " + Quote(file.string());
    return RunCommand(command);
  }
};

TEST_F(LibreOfficeTest, ConvertsToPdf) {
  ASSERT_TRUE(HaveLibreOffice()) << "libreoffice-calc-nogui is missing (scripts/setup.sh installs it)";
  const fs::path out = folder_->path() / "pdf";
  const auto result = Convert("pdf", out, {Pages(), Macro()});
  ASSERT_EQ(result.status, 0) << result.output;
  for (const char* name : {"Lista.pdf", "Makro.pdf"}) {
    const fs::path pdf = out / name;
    ASSERT_TRUE(fs::exists(pdf)) << result.output;
    EXPECT_GT(fs::file_size(pdf), 1000u);
  }
}

TEST_F(ExternalReadersTest, OpenpyxlFindsEveryPageReferringToItself) {
  ASSERT_TRUE(HaveOpenpyxl()) << "python3-openpyxl or python3-pil is missing (scripts/setup.sh installs it)";
  const auto result = RunPython(
      kSource / "tests/excel/read_back.py",
      {SelfReferring().string(), "sheets=Common,Mall 1,Sida,1,2,3",
       // Formulas naming the template name the page, quoted as a numeric name needs.
       "cell:1!A1=='1'!G2", "cell:2!A2==CONCATENATE('2'!G2,\"-\",Common!B1)",
       "cell:3!A3==COUNTA('3'!$G$2:$G$3)",
       // Text that only looks like a reference, and references to other sheets, stay.
       "cell:1!A5==\"'Mall 1'!G2\"", "cell:1!A6==Sida!F1", "cell:Common!B2=='Mall 1'!G2",
       "cell:Mall 1!A1=='Mall 1'!G2", "validation:2=B10:B40|'2'!$G$2:$G$3",
       "validation:Common=B3|'Mall 1'!$G$2:$G$3",
       // The workbook's name keeps meaning the template; each page has its own of the same name.
       "name:Sidnr='Mall 1'!$F$1", "name:1!Sidnr='1'!$F$1", "name:3!Sidnr='3'!$F$1", "name:Mall 1!Sidnr=",
       // The formats paste: the conditional format and the height of row 11 reach rows 12 to 20.
       "cf:3=A11:F11 A12:F20|$B11=\"X\"", "cf:2=A11:F11|$B11=\"X\"", "height:3!11=24", "height:3!15=24",
       "height:3!21=15", "height:2!15=15", "row_border:3!21=medium", "cell:3!A21=",
       // One selection in the view, not one more per Select.
       "selections:3=A10", "selections:Mall 1=A1"});
  EXPECT_EQ(result.status, 0) << result.output;
}

// LibreOffice calculates the formulas of a workbook it reads as its own: on each page they show that
// page's own cells.
TEST_F(LibreOfficeTest, CalculatesEachPageFromItsOwnCells) {
  ASSERT_TRUE(HaveLibreOffice()) << "libreoffice-calc-nogui is missing (scripts/setup.sh installs it)";
  const fs::path out = folder_->path() / "csv-sidor";
  const auto result = Convert(kCsv, out, {SelfReferring()});
  ASSERT_EQ(result.status, 0) << result.output;
  const auto expectLines = [&](const std::string& sheet, const std::vector<std::string>& starts) {
    const fs::path csv = out / ("Sidor-" + sheet + ".csv");
    ASSERT_TRUE(fs::exists(csv)) << result.output;
    std::istringstream text(ReadText(csv));
    std::string line;
    for (const auto& start : starts) {
      std::getline(text, line);
      EXPECT_EQ(line.substr(0, start.size()), start) << csv << ":\n" << ReadText(csv);
    }
  };
  for (const std::string page : {"1", "2", "3"}) {
    expectLines(page, {"sida-" + page + ",", "sida-" + page + "-Ställverk 8,", "2,", page + ","});
  }
  expectLines("Mall 1", {"mallens egen,", "mallens egen-Ställverk 8,", "2,", "0,"});
  expectLines("Common", {"Projekt,Ställverk 8", "Mallens G2,mallens egen"});
}

TEST_F(ExternalReadersTest, ValidatorFindsNoErrorTheTemplateLacks) {
  const fs::path validator = kSource / "tools/node_modules/.bin/ooxml-validate";
  ASSERT_TRUE(fs::exists(validator)) << "ooxml-validate is missing (scripts/setup.sh installs it)";
  EXPECT_LE(ValidatorErrors(validator, Pages()),
            ValidatorErrors(validator, kSource / "tests/data/templates/title_block.xlsx"));
  EXPECT_LE(ValidatorErrors(validator, Macro()),
            ValidatorErrors(validator, kSource / "tests/data/templates/title_block.xlsm"));
  ASSERT_EQ(ValidatorErrors(validator, kSelfReferences), 0);
  EXPECT_EQ(ValidatorErrors(validator, SelfReferring()), 0);
}

}  // namespace
}  // namespace sw::excel
