// sheetwright-cli preview, run as a separate process the way users and scripts run it.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli_runner.h"
#include "temp_dir.h"

namespace sw::testing {
namespace {

class PreviewCommandTest : public ::testing::Test {
 protected:
  void StoreSettings(const std::string& values) {
    temp.Write("registry.reg",
               "Windows Registry Editor Version 5.00\r\n\r\n"
               "[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n" +
                   values);
  }
  std::filesystem::path TemplateWithIni(const std::string& ini) {
    std::filesystem::copy_file(DataFile("templates/title_block.xlsx"), temp.path() / "Mall.xlsx");
    temp.Write("MALL.INI", ini);
    return temp.path() / "Mall.xlsx";
  }

  TempDir temp;
  CliRunner cli{temp.path()};
};

TEST_F(PreviewCommandTest, PrintsEveryRowWithItsClassInSwedishText) {
  const auto result = cli.Run({"preview", kExample});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  // The preamble is skipped; the first "%" line is row 1.
  EXPECT_NE(result.out.find("     1 head  +A1 Kopplingssk\u00e5p pumpar |"), std::string::npos);
  EXPECT_NE(result.out.find("     2 data   | X1 | 1 | W101 | 1 | M1 Pumpmotor | U1 | Kabel 4G2,5\n"),
            std::string::npos);
  EXPECT_NE(result.out.find("| B1 Niv\u00e5givare | + | Sk\u00e4rmad 2x0,75/2"), std::string::npos);
  EXPECT_NE(result.out.find("    15 data   |  |  |  |  |  |  | \n"), std::string::npos);
}

TEST_F(PreviewCommandTest, StoredSettingsApplyAndFlagsOverrideThemForOneRunAndWriteNothing) {
  StoreSettings("\"IncludeEmptyRows\"=\"0\"\r\n\"UseSlashTwo\"=\"0\"\r\n");
  const auto before = std::filesystem::last_write_time(cli.RegistryFile());

  auto result = cli.Run({"preview", kExample, "--summary"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "rows: 26\ncolumns: 8\nplacements: 3\n");
  result = cli.Run({"preview", kExample, "--summary", "--include-empty-rows", "1"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "rows: 28\ncolumns: 8\nplacements: 3\n");

  EXPECT_NE(cli.Run({"preview", kExample}).out.find("Sk\u00e4rmad 2x0,75\n"), std::string::npos);
  EXPECT_NE(cli.Run({"preview", kExample, "--slash-two", "1"}).out.find("Sk\u00e4rmad 2x0,75/2"),
            std::string::npos);

  EXPECT_EQ(std::filesystem::last_write_time(cli.RegistryFile()), before);
}

TEST_F(PreviewCommandTest, MissingDumpEndsOnTheSwedishMessage) {
  const auto result = cli.Run({"preview", "saknas.txt"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "Fel: Hittar ej filen saknas.txt.\n");
}

TEST_F(PreviewCommandTest, BadUsageExitsWithTwo) {
  EXPECT_EQ(cli.Run({"preview"}).exitCode, 2);
  EXPECT_EQ(cli.Run({"preview", kExample, "--slash-two", "2"}).exitCode, 2);
  EXPECT_EQ(cli.Run({"preview", kExample, "--json", "--summary"}).exitCode, 2);
  EXPECT_EQ(cli.Run({"frobnicate"}).exitCode, 2);
}

TEST_F(PreviewCommandTest, TemplateGivesHeadingsAndPageBreakMarks) {
  const auto workbook = TemplateWithIni(
      "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n[Common]\r\nProjekt=C3\r\n"
      "[Sheet]\r\nSHEETNO=H2\r\nNEXTSHEET=H3\r\nLOCATION=B5\r\nSTARTROW=10\r\nENDROW=12\r\n"
      "COLUMNS=A,B,C,D,E,F,G\r\n");
  auto result = cli.Run({"preview", kExample, "--template", workbook.string()});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  // Page length 3 marks the rows that end a page; which rows they are is the preview's own matter.
  EXPECT_NE(result.out.find("     4 mark "), std::string::npos);

  // Generation's count: 8, 7 and 10 rows at three a page.
  result = cli.Run({"preview", kExample, "--template", workbook.string(), "--summary"});
  EXPECT_EQ(result.out, "rows: 28\ncolumns: 8\nplacements: 3\npages: 10\n");

  result = cli.Run({"preview", kExample, "--template", workbook.string(), "--show-page-breaks", "0"});
  EXPECT_EQ(result.out.find(" mark "), std::string::npos);

  result = cli.Run({"preview", kExample, "--template", workbook.string(), "--json"});
  // Each heading is the INI's column name followed by one blank, as the main window writes it.
  EXPECT_NE(result.out.find("\"headers\": [\"\", \"A \", \"B \", \"C \", \"D \", \"E \", \"F \", \"G \"]"),
            std::string::npos)
      << result.out.substr(0, 200);
}

TEST_F(PreviewCommandTest, TemplateWithoutIniIsToldButThePreviewStillLoads) {
  std::filesystem::copy_file(DataFile("templates/title_block.xlsx"), temp.path() / "Ensam.xlsx");
  const auto result =
      cli.Run({"preview", kExample, "--summary", "--template", (temp.path() / "Ensam.xlsx").string()});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "Fel: Excel-rapportmallen saknar n\u00f6dv\u00e4ndig tillh\u00f6rande INI-fil\n");
  EXPECT_EQ(result.out, "rows: 28\ncolumns: 8\nplacements: 3\n");
}

TEST_F(PreviewCommandTest, DumpWithoutReportRowsIsNoFailureEvenWhenTheTemplateComplains) {
  const auto workbook = TemplateWithIni("[Common]\r\nProjekt=C3\r\n");  // no [Sheet]
  const auto dump = temp.Write("bara_inledning.txt", "VOLTARIS Rapport\tFBLTAY\r\nProjekt 4711\r\n");
  const auto result = cli.Run({"preview", dump.string(), "--template", workbook.string(), "--summary"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "rows: 0\ncolumns: 2\nplacements: 0\n");
}

TEST_F(PreviewCommandTest, ExportFixAsksAndOnlyYesChangesTheTable) {
  auto result = cli.Run({"preview", kExample, "--summary", "--fix-export"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "Justera fel i exportfil: Infoga kolumn i yttre f\u00f6rbindningstabell?\n");
  EXPECT_EQ(result.out, "rows: 28\ncolumns: 8\nplacements: 3\n");

  result = cli.Run({"preview", kExample, "--summary", "--fix-export", "--yes"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "rows: 28\ncolumns: 9\nplacements: 3\n");
}

}  // namespace
}  // namespace sw::testing
