// Pages copied from a template whose formulas and names refer to its own sheet, checked by readers
// that share no code with the engine: each page must refer to itself, as in Excel.
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
using testing::Quote;
using testing::RunCommand;
using testing::RunPython;
using testing::ValidatorErrors;

const fs::path kSource = SW_SOURCE_DIR;
const fs::path kTemplate = kSource / "tests/data/templates/self_references.xlsx";

// A normal run of three pages, the last one finished as a dynamic-length page is: the second data
// row's formats pasted on the rows below it, a line under the rows, the first data cell selected.
void MakePages(const fs::path& target) {
  auto app = CreateApplication(EngineKind::kPackage);
  Workbook book = app->Workbooks().Open(kTemplate.string(), false);
  book.SaveAs(target.string());
  book.Worksheets().Item(1).Cells(1, 2).SetValue("Ställverk 8");
  for (int page = 1; page <= 3; ++page) {
    app->Sheets().Item(2).Select();
    const int count = app->Sheets().Count();
    app->Sheets().Item(2).CopyAfter(app->Sheets().Item(count));
    app->Sheets().Item(app->Sheets().Count()).Select();
    app->Sheets().Item(app->Sheets().Count()).SetName(std::to_string(page));
    Sheet current = book.Worksheets().Item(app->Sheets().Count());
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

class PageCopyReadersTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new testing::TempDir();
    MakePages(Pages());
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }
  static fs::path Pages() { return folder_->path() / "Lista.xlsx"; }

  static testing::TempDir* folder_;
};
testing::TempDir* PageCopyReadersTest::folder_ = nullptr;

TEST_F(PageCopyReadersTest, OpenpyxlFindsEveryPageReferringToItself) {
  ASSERT_TRUE(HaveOpenpyxl()) << "python3-openpyxl and python3-pil are needed (scripts/setup.sh)";
  const auto result = RunPython(
      kSource / "tests/excel/read_back.py",
      {Pages().string(), "sheets=Common,Mall 1,Sida,1,2,3",
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

// LibreOffice calculates the formulas itself: on each page they show that page's own cells.
TEST_F(PageCopyReadersTest, LibreOfficeCalculatesEachPageFromItsOwnCells) {
  ASSERT_TRUE(HaveLibreOffice()) << "libreoffice-calc-nogui is needed (scripts/setup.sh)";
  const fs::path out = folder_->path() / "csv";
  const std::string profile = "-env:UserInstallation=file://" + (folder_->path() / "lo-profile").string();
  const auto result =
      RunCommand("timeout 120 soffice " + Quote(profile) + " --headless --convert-to " +
                 Quote("csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1") +
                 " --outdir " + Quote(out.string()) + " " + Quote(Pages().string()));
  ASSERT_EQ(result.status, 0) << result.output;
  const auto expectLines = [&](const std::string& sheet, const std::vector<std::string>& starts) {
    const fs::path csv = out / ("Lista-" + sheet + ".csv");
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

TEST_F(PageCopyReadersTest, PackageLinterFindsNothing) {
  const auto result = RunPython(kSource / "tests/excel/package_lint.py", {Pages().string()});
  EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(PageCopyReadersTest, ValidatorFindsNoErrorTheTemplateLacks) {
  const fs::path validator = kSource / "tools/node_modules/.bin/ooxml-validate";
  ASSERT_TRUE(fs::exists(validator)) << "ooxml-validate is needed (scripts/setup.sh)";
  ASSERT_EQ(ValidatorErrors(validator, kTemplate), 0);
  EXPECT_EQ(ValidatorErrors(validator, Pages()), 0);
}

}  // namespace
}  // namespace sw::excel
