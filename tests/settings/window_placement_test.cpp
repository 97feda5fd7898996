#include "settings/window_placement.h"

#include <gtest/gtest.h>

#include <vector>

#include "memory_settings.h"

namespace sw::settings {
namespace {

using sw::testing::MemorySettings;

constexpr ScreenSize kScreen{19200, 10800};

struct RestoreCase {
  const char* what;
  std::vector<std::pair<std::string, std::string>> saved;  // key -> text in section frmMain
  ScreenSize screen;
  WindowPlacement expected;
};

void PrintTo(const RestoreCase& c, std::ostream* os) {
  *os << c.what;
}

class RestoreWindowPlacementTest : public ::testing::TestWithParam<RestoreCase> {};

TEST_P(RestoreWindowPlacementTest, ReadsAndClamps) {
  MemorySettings settings;
  for (const auto& [key, value] : GetParam().saved) settings.SaveAppSetting(key, value, "frmMain");
  EXPECT_EQ(RestoreWindowPlacement(settings, kMainWindowName, 5500, 5500, GetParam().screen),
            GetParam().expected)
      << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, RestoreWindowPlacementTest,
    ::testing::Values(
        RestoreCase{"first start", {}, kScreen, {0, 0, 5500, 5500, WindowState::kNormal}},
        RestoreCase{
            "saved values",
            {{"Top", "120"}, {"Left", "1234,5"}, {"Height", "7000.5"}, {"Width", "9000"}, {"WinState", "2"}},
            kScreen,
            {120, 1234.5f, 7000.5f, 9000, WindowState::kMaximised}},
        RestoreCase{"too small", {{"Width", "3000"}, {"Height", "100"}}, kScreen, {0, 0, 5500, 5500}},
        RestoreCase{"negative position", {{"Top", "-300"}, {"Left", "-15"}}, kScreen, {0, 0, 5500, 5500}},
        RestoreCase{"larger than the screen",
                    {{"Width", "30000"}, {"Height", "20000"}},
                    kScreen,
                    {0, 0, 10800, 19200}},
        RestoreCase{"screen smaller than the default",
                    {{"Width", "30000"}, {"Height", "9000"}},
                    {4000, 3000},
                    {0, 0, 5500, 5500}},
        RestoreCase{"empty and unreadable texts",
                    {{"Top", ""}, {"Width", ""}, {"Left", "abc"}, {"WinState", "x"}},
                    kScreen,
                    {0, 0, 5500, 5500}},
        RestoreCase{"minimised is restored as saved",
                    {{"WinState", "1"}},
                    kScreen,
                    {0, 0, 5500, 5500, WindowState::kMinimised}},
        RestoreCase{"unknown state", {{"WinState", "7"}}, kScreen, {0, 0, 5500, 5500}}));

// Records the order of writes.
class RecordingSettings final : public Settings {
 public:
  std::vector<std::string> writes;
  std::string GetAppSetting(std::string_view, std::string_view defaultValue, std::string_view = {},
                            std::string_view = {}) override {
    return std::string(defaultValue);
  }
  void SaveAppSetting(std::string_view key, std::string_view value, std::string_view section = {}) override {
    writes.push_back(std::string(section) + (section.empty() ? "" : "\\") + std::string(key) + "=" +
                     std::string(value));
  }
  void DeleteAppSetting(std::string_view, std::string_view = {}) override {}
};

TEST(SaveWindowPlacement, ClosingWhileMinimisedSavesNormalStateInOrder) {
  RecordingSettings settings;
  SaveMainWindowAtClose(settings, {120, 1234.5f, 7000, 9000, WindowState::kMinimised});
  EXPECT_EQ(settings.writes,
            (std::vector<std::string>{"frmMain\\Top=120", "frmMain\\Left=1234.5", "frmMain\\Height=7000",
                                      "frmMain\\Width=9000", "frmMain\\WinState=0", "Width=9000",
                                      "Height=7000", "WinState=0"}));
}

TEST(SaveWindowPlacement, SavedPlacementRestoresUnchanged) {
  MemorySettings settings;
  const WindowPlacement placement{15.25f, 600, 8000, 12000, WindowState::kMaximised};
  SaveWindowPlacement(settings, "frmOther", placement);
  EXPECT_EQ(RestoreWindowPlacement(settings, "frmOther", 5500, 5500, kScreen), placement);
  EXPECT_EQ(PlacementAtClose(placement), placement);
}

TEST(SettingNumbers, TolerantParse) {
  const std::vector<std::pair<std::string, float>> cases = {
      {"1234", 1234}, {"1234,5", 1234.5f}, {"1234.5", 1234.5f}, {" -12 ", -12},
      {"+7", 7},      {"12abc", 12},       {"abc", 0},          {"", 0},
      {"-", 0},       {",5", 0.5f},        {"1E+07", 1e7f},     {"2e", 2},
      {"1e999", 0},   {"5500 twips", 5500}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(ParseSettingNumber(text), expected) << text;
  EXPECT_EQ(FormatSettingNumber(10000000), "10000000");
  EXPECT_EQ(FormatSettingNumber(0.1f), "0.1");
  EXPECT_EQ(FormatSettingNumber(-15), "-15");
}

}  // namespace
}  // namespace sw::settings
