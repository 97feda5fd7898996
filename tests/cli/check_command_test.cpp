// sheetwright-cli check: the template checks generation makes, from the command line.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli_runner.h"
#include "temp_dir.h"

namespace sw::testing {
namespace {

class CheckCommandTest : public ::testing::Test {
 protected:
  std::string Template(const std::string& ini) {
    std::filesystem::copy_file(DataFile("templates/title_block.xlsx"), temp.path() / "Mall.xlsx");
    temp.Write("Mall.ini", ini);
    return (temp.path() / "Mall.xlsx").string();
  }
  TempDir temp;
  CliRunner cli{temp.path()};
};

const char* const kGoodIni =
    "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n"
    "[Common]\r\nProjekt=C3\r\nDatum=B2|.\r\nRitad av=D4|AB\r\n"
    "[Sheet]\r\nSHEETNO=H2\r\nNEXTSHEET=H3\r\nLOCATION=B5\r\nSTARTROW=10\r\nENDROW=40\r\nCOLUMNS=A,B,!,D\r\n";

TEST_F(CheckCommandTest, AcceptedTemplatePrintsItsLayout) {
  const auto result = cli.Run({"check", Template(kGoodIni)});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_NE(result.out.find("page sheet: Mall\n"), std::string::npos);
  EXPECT_NE(result.out.find("common sheet: Common\n"), std::string::npos);
  EXPECT_NE(result.out.find("rows per page: 31 (rows 10 to 40)\n"), std::string::npos);
  EXPECT_NE(result.out.find("columns: 3 of 4 report fields written\n"), std::string::npos);
  EXPECT_NE(result.out.find("common fields: 3\n"), std::string::npos);
  EXPECT_NE(result.out.find("  Ritad av = AB\n"), std::string::npos);
}

TEST_F(CheckCommandTest, TooFewEntriesTellsEveryProblemAndFails) {
  const auto workbook = Template(
      "[Tabs]\r\nTemplate=Mall\r\n[Common]\r\nProjekt=C3\r\n"
      "[Sheet]\r\nSHEETNO=H2\r\nNEXTSHEET=0\r\nSTARTROW=tio\r\nENDROW=40\r\nCOLUMNS=A,B\r\n");
  const auto result = cli.Run({"check", workbook});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  // The last message asks for the INI file to be edited; CR in a message becomes a line break.
  EXPECT_NE(result.err.find("Fel: Redigera ini-filen "), std::string::npos) << result.err;
  EXPECT_NE(result.err.find(" och f\u00f6rs\u00f6k senare.\n"), std::string::npos);
}

TEST_F(CheckCommandTest, WorkbookWithoutIniFails) {
  std::filesystem::copy_file(DataFile("templates/title_block.xlsx"), temp.path() / "Ensam.xlsx");
  const auto result = cli.Run({"check", (temp.path() / "Ensam.xlsx").string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "Fel: Excel-rapportmallen saknar n\u00f6dv\u00e4ndig tillh\u00f6rande INI-fil\n");
}

}  // namespace
}  // namespace sw::testing
