#include "cli/environment_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "fake_installation.h"

namespace sw::cli {
namespace {

struct Output {
  int exitCode;
  std::string out;
  std::string err;
};

Output RunCommand(testing::FakeInstallation& install, bool json) {
  std::ostringstream out, err;
  const int exitCode = RunEnvironmentWith({.json = json, .drives = {}}, install.registry, install.settings,
                                          install.environment, out, err);
  return {exitCode, out.str(), err.str()};
}

TEST(EnvironmentCommandTest, JsonShowsThePickersAsTheWindowWould) {
  testing::FakeInstallation install;
  const auto result = RunCommand(install, true);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(
      result.out,
      R"({"templateDirs": ["C:\\VOLTARIS\\Mallar\\", "C:\\VOLTARIS\\Extra\\", )"
      R"("C:\\VOLTARIS\\Anvandarmallar\\", )"
      R"("\\", "C:\\Projektmallar\\"], "templateDir": "C:\\Projektmallar\\", )"
      R"("templates": ["Oversikt.xls", "PANEL.xlsx"], "template": "PANEL.xlsx", "templateError": null, )"
      R"("dumps": ["C:\\VOLTARIS\\Rapport\\volt_report.txt", )"
      R"("C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt"], )"
      R"("dump": "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt", "reportId": "PANEL", )"
      R"("sheetNumbers": ["7", "07", "007", "0007", "00007", "000007"]})"
      "\n");
  // Looking changes nothing the window remembers.
  EXPECT_TRUE(install.settings.values.empty());
}

TEST(EnvironmentCommandTest, UnmatchedReportShowsTheErrorLabel) {
  testing::FakeInstallation install;
  install.Write("Windows/VOLTARIS.INI", "[CURREPORT]\r\nREPORT_ID=FBLTAY\r\n");
  const auto json = RunCommand(install, true);
  EXPECT_NE(
      json.out.find(R"x("template": "", "templateError": "Ingen mall matchar senaste rapport. (FBLTAY)")x"),
      std::string::npos)
      << json.out;
  const auto text = RunCommand(install, false);
  EXPECT_NE(text.out.find("Template matched: none - Ingen mall matchar senaste rapport. (FBLTAY)\n"),
            std::string::npos)
      << text.out;
  EXPECT_NE(text.out.find("Sheet numbers: \"\" 0 00 000 0000 00000 000000\n"), std::string::npos) << text.out;
}

}  // namespace
}  // namespace sw::cli
