// Workbooks the engine writes, checked by readers that share no code with it. One realistic run
// per file type, since LibreOffice and the validator take seconds per file.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <regex>
#include <string>

#include "excel/application_factory.h"
#include "temp_dir.h"

namespace sw::excel {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = SW_SOURCE_DIR;

struct CommandResult {
  int status = -1;
  std::string output;
};

CommandResult RunCommand(const std::string& command) {
  CommandResult result;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return result;
  std::array<char, 4096> buffer;
  while (std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) result.output += buffer.data();
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::string Quote(const fs::path& path) {
  return "'" + path.string() + "'";
}

bool HavePythonWithOpenpyxl() {
  return RunCommand("/usr/bin/python3 -c 'import openpyxl'").status == 0;
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
    app->Sheets().Item(2).Select();
    const int count = app->Sheets().Count();
    app->Sheets().Item(2).CopyAfter(app->Sheets().Item(count));
    app->Sheets().Item(app->Sheets().Count()).Select();
    app->Sheets().Item(app->Sheets().Count()).SetName(std::to_string(page));
    Sheet current = book.Worksheets().Item(app->Sheets().Count());
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

class ExternalReadersTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new testing::TempDir();
    MakePages(kSource / "tests/data/templates/title_block.xlsx", Pages());
    MakeMacroCopy(kSource / "tests/data/templates/title_block.xlsm", Macro());
    MakePages(kSource / "tests/data/templates/title_block_openpyxl.xlsx", Scripted());
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }
  static fs::path Pages() { return folder_->path() / "Lista.xlsx"; }
  static fs::path Macro() { return folder_->path() / "Makro.xlsm"; }
  // From the template as openpyxl wrote it: VML with an idmap, a theme part, no shared strings.
  static fs::path Scripted() { return folder_->path() / "Skript.xlsx"; }

  static testing::TempDir* folder_;
};
testing::TempDir* ExternalReadersTest::folder_ = nullptr;

TEST_F(ExternalReadersTest, PackageLinterFindsNothing) {
  if (RunCommand("/usr/bin/python3 -c pass").status != 0) GTEST_SKIP() << "python3 is not installed";
  for (const auto& file : {Pages(), Macro(), Scripted()}) {
    const auto result =
        RunCommand("/usr/bin/python3 " + Quote(kSource / "tests/excel/package_lint.py") + " " + Quote(file));
    EXPECT_EQ(result.status, 0) << file << ":\n" << result.output;
  }
}

TEST_F(ExternalReadersTest, OpenpyxlReadsBackWhatWasWritten) {
  if (!HavePythonWithOpenpyxl()) GTEST_SKIP() << "python3-openpyxl is not installed";
  const auto result =
      RunCommand("/usr/bin/python3 " + Quote(kSource / "tests/excel/read_back.py") + " " + Quote(Pages()) +
                 " sheets=Common,Mall,1,2,3 'cell:Common!B1=Ställverk 8 & <ny>' 'cell:1!B2=+A1' "
                 "'cell:3!F2=-' 'cell:2!A39=W239' 'cell:Mall!A10=' breaks:3=19,29 breaks:Mall= "
                 "'print_area:3=$A$1:$F$40' 'print_titles:2=1:9' "
                 "merged:1=A1:D1,B2:D2,B3:D3 'cell:2!B3==Common!B1'");
  EXPECT_EQ(result.status, 0) << result.output;
  const auto macro =
      RunCommand("/usr/bin/python3 " + Quote(kSource / "tests/excel/read_back.py") + " " + Quote(Macro()) +
                 " 'sheets=Common,Mall,Sida 1' 'cell:Sida 1!A10=W1' 'print_titles:Sida 1=1:9'");
  EXPECT_EQ(macro.status, 0) << macro.output;
  const auto scripted =
      RunCommand("/usr/bin/python3 " + Quote(kSource / "tests/excel/read_back.py") + " " + Quote(Scripted()) +
                 " sheets=Common,Mall,1,2,3 'cell:3!A10=W310' breaks:3=19,29");
  EXPECT_EQ(scripted.status, 0) << scripted.output;
}

TEST_F(ExternalReadersTest, LibreOfficeConvertsToPdf) {
  if (RunCommand("command -v soffice").status != 0) GTEST_SKIP() << "libreoffice-calc-nogui is not installed";
  const fs::path out = folder_->path() / "pdf";
  const std::string profile = "-env:UserInstallation=file://" + (folder_->path() / "lo-profile").string();
  const auto result =
      RunCommand("timeout 120 soffice '" + profile + "' --headless --convert-to pdf --outdir " + Quote(out) +
                 " " + Quote(Pages()) + " " + Quote(Macro()));
  ASSERT_EQ(result.status, 0) << result.output;
  for (const char* name : {"Lista.pdf", "Makro.pdf"}) {
    const fs::path pdf = out / name;
    ASSERT_TRUE(fs::exists(pdf)) << result.output;
    EXPECT_GT(fs::file_size(pdf), 1000u);
  }
}

int ValidatorErrors(const fs::path& validator, const fs::path& file) {
  const auto result = RunCommand("timeout 120 " + Quote(validator) + " -f xlsx " + Quote(file));
  std::smatch match;
  if (!std::regex_search(result.output, match, std::regex("Found (\\d+) error"))) {
    ADD_FAILURE() << "unexpected validator output for " << file << ":\n" << result.output;
    return -1;
  }
  if (match[1] != "0") std::cerr << file << ":\n" << result.output << "\n";
  return std::stoi(match[1]);
}

TEST_F(ExternalReadersTest, ValidatorFindsNoErrorTheTemplateLacks) {
  const fs::path validator = kSource / "tools/node_modules/.bin/ooxml-validate";
  if (!fs::exists(validator)) GTEST_SKIP() << "ooxml-validate is not installed (scripts/setup.sh)";
  EXPECT_LE(ValidatorErrors(validator, Pages()),
            ValidatorErrors(validator, kSource / "tests/data/templates/title_block.xlsx"));
  EXPECT_LE(ValidatorErrors(validator, Macro()),
            ValidatorErrors(validator, kSource / "tests/data/templates/title_block.xlsm"));
}

}  // namespace
}  // namespace sw::excel
