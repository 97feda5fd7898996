#include "settings/start_log.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/environment.h"
#include "base/file_io.h"
#include "fake_environment.h"
#include "temp_dir.h"

namespace sw::settings {
namespace {

TEST(StartLog, OffWritesNothing) {
  sw::testing::TempDir dir;
  for (const auto& environment :
       {testing::FakeEnvironment{}, testing::FakeEnvironment{{"SHEETWRIGHT_STARTLOG", ""}}}) {
    const StartLog log(environment, dir.path());
    EXPECT_FALSE(log.Enabled());
    log.WriteStartLog("Restore Mainform");
  }
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "Start.log"));
}

TEST(StartLog, OnAppendsTimestampedLinesAcrossRuns) {
  sw::testing::TempDir dir;
  const testing::FakeEnvironment environment{{"SHEETWRIGHT_STARTLOG", "1"}};
  {
    const StartLog firstRun(environment, dir.path());
    ASSERT_TRUE(firstRun.Enabled());
    EXPECT_TRUE(firstRun.WriteStartLog("Fetching data from VOLTARIS.INI"));
    EXPECT_TRUE(firstRun.WriteStartLog("Restore Mainform"));
  }
  const StartLog secondRun(environment, dir.path());
  EXPECT_TRUE(secondRun.WriteStartLog("Mainform successfully loaded"));

  const auto text = base::ReadWholeFile(dir.path() / "Start.log");
  ASSERT_TRUE(text);
  const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\t([^\r\n]*)\r\n)");
  std::vector<std::string> messages;
  std::string rest = *text;
  std::smatch match;
  while (std::regex_search(rest, match, line, std::regex_constants::match_continuous)) {
    messages.push_back(match[1]);
    rest = match.suffix();
  }
  EXPECT_TRUE(rest.empty()) << rest;
  EXPECT_EQ(messages, (std::vector<std::string>{"Fetching data from VOLTARIS.INI", "Restore Mainform",
                                                "Mainform successfully loaded"}));
}

TEST(StartLog, UnwritableFolderIsReported) {
  const StartLog log(testing::FakeEnvironment{{"SHEETWRIGHT_STARTLOG", "on"}}, "/nonexistent/folder");
  EXPECT_FALSE(log.WriteStartLog("x"));
}

}  // namespace
}  // namespace sw::settings
