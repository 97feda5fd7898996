// The look of the window without the window: themes, the stored toolbar layout and the reset to the
// standard look with the "Init.reg" shipped beside the program.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/windows_path.h"
#include "cadenv/portable_registry.h"
#include "memory_settings.h"
#include "recording_launcher.h"
#include "scripted_dialogs.h"
#include "session/appearance_reset.h"
#include "session/themes.h"
#include "session/toolbar_layout.h"
#include "settings/settings.h"
#include "temp_dir.h"

namespace sw::session {
namespace {

using testing::MemorySettings;

const std::filesystem::path kShippedDefaults = std::filesystem::path(SW_SOURCE_DIR) / "src/gui/Init.reg";

TEST(ThemeTest, CommandsStoreTheirNumbersAndEachHasItsOwnColour) {
  const std::vector<std::pair<int, int>> expected{{130, 1}, {131, 0}, {132, 2}, {133, 3}, {143, 4}, {135, 6}};
  ASSERT_EQ(Themes().size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(Themes()[i].commandId, expected[i].first);
    EXPECT_EQ(Themes()[i].number, expected[i].second);
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(Themes()[i].colour, Themes()[j].colour);
  }
  EXPECT_EQ(ThemeByCommand(135)->caption, "Office 2007");
  EXPECT_EQ(ThemeByCommand(143)->caption, "Visual Studio 2005");
  EXPECT_FALSE(ThemeByCommand(134));
  // Packed as Windows keeps colours: red in the low byte. Office 2007's light blue has more blue.
  const auto office2007 = static_cast<std::uint32_t>(ThemeByNumber(6)->colour);
  EXPECT_GT((office2007 >> 16) & 0xFF, office2007 & 0xFF);
  EXPECT_EQ(office2007 >> 24, 0u);
  EXPECT_EQ(ThemeByNumber(0)->style, ThemeStyle::kClassic);
}

TEST(ThemeTest, AStartTurnsANumberAboveFiveIntoTwo) {
  MemorySettings settings;
  EXPECT_EQ(StartTheme(settings), 2);
  for (const auto& [stored, started] : std::vector<std::pair<std::string, int>>{
           {"0", 0}, {"4", 4}, {"5", 5}, {"6", 2}, {"99", 2}, {"", 2}, {"blå", 2}}) {
    settings.SaveAppSetting("Theme", stored);
    EXPECT_EQ(StartTheme(settings), started) << stored;
  }
  // Nothing chooses 5; it looks like 2.
  EXPECT_EQ(ThemeOrDefault(5).number, 2);
  EXPECT_EQ(ThemeOrDefault(4).number, 4);
}

TEST(ToolbarLayoutTest, KeptInTheLayoutSubkeyAndTheOldValueIsReadUntilReplaced) {
  MemorySettings settings;
  EXPECT_EQ(LoadToolbarLayout(settings, "frmMain"), "");
  settings.SaveAppSetting("Layout", "old");
  EXPECT_EQ(LoadToolbarLayout(settings, "frmMain"), "old");

  SaveToolbarLayout(settings, "frmMain", "new");
  EXPECT_EQ(settings.GetAppSetting("frmMain", "", "Layout"), "new");
  EXPECT_EQ(settings.GetAppSetting("Layout", "-"), "-");
  EXPECT_EQ(LoadToolbarLayout(settings, "frmMain"), "new");

  settings.SaveAppSetting("Layout", "old");
  ForgetToolbarLayout(settings, "frmMain");
  EXPECT_EQ(LoadToolbarLayout(settings, "frmMain"), "");
  EXPECT_TRUE(settings.values.empty());
}

class ResetAppearanceTest : public ::testing::Test {
 protected:
  ResetAppearanceTest() { base::WindowsPaths().MapDrive('C', temp.path()); }
  ~ResetAppearanceTest() override { base::WindowsPaths().MapDrive('C', {}); }

  void ShipDefaults() const {
    std::filesystem::create_directories(temp.path() / "Program");
    std::filesystem::copy_file(kShippedDefaults, temp.path() / "Program/Init.reg");
  }

  testing::TempDir temp;
  testing::ScriptedDialogs dialogs;
};

TEST_F(ResetAppearanceTest, AsksFirstAndGoesOnOnlyWithYesAndTheDefaultsFile) {
  ShipDefaults();
  dialogs.answers = {base::MessageAnswer::kNo};
  EXPECT_FALSE(AskResetAppearance(dialogs, "C:\\Program"));
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_EQ(dialogs.messages[0].text,
            "Ska programmets färger och menyer återställas till standardutseendet?");
  EXPECT_EQ(dialogs.messages[0].title, "Återställning");
  EXPECT_EQ(dialogs.messages[0].icon, base::MessageIcon::kQuestion);
  EXPECT_EQ(dialogs.messages[0].buttons, base::MessageButtons::kYesNo);

  dialogs.answers = {base::MessageAnswer::kYes};
  EXPECT_EQ(AskResetAppearance(dialogs, "C:\\Program"), std::optional<std::string>("C:\\Program\\Init.reg"));
  dialogs.answers = {base::MessageAnswer::kYes};
  EXPECT_EQ(AskResetAppearance(dialogs, "C:\\Program\\"),
            std::optional<std::string>("C:\\Program\\Init.reg"));

  // Without the file the question is all that happens.
  std::filesystem::remove(temp.path() / "Program/Init.reg");
  dialogs.answers = {base::MessageAnswer::kYes};
  EXPECT_FALSE(AskResetAppearance(dialogs, "C:\\Program"));
  EXPECT_EQ(dialogs.messages.size(), 4u);
}

TEST_F(ResetAppearanceTest, TheShippedDefaultsRestoreTheThemeAndForgetTheToolbars) {
  ShipDefaults();
  MemorySettings settings;
  settings.SaveAppSetting("Theme", "6");
  settings.SaveAppSetting("frmMain", "moved", "Layout");
  settings.SaveAppSetting("Layout", "older");
  settings.SaveAppSetting("UseSlashTwo", "0");

  SettingsDefaultsMerger merger(settings);
  EXPECT_TRUE(RestoreStandardAppearance(settings, merger, "frmMain", "C:\\Program\\Init.reg"));
  EXPECT_EQ(settings.GetAppSetting("Theme", ""), "2");
  EXPECT_EQ(settings.GetAppSetting("frmMain", "-", "Layout"), "-");
  EXPECT_EQ(settings.GetAppSetting("Layout", "-"), "-");
  EXPECT_EQ(settings.GetAppSetting("UseSlashTwo", ""), "0");  // not part of the look
}

TEST_F(ResetAppearanceTest, SettingsMergeTakesTextValuesBelowTheSettingsKeyAllOrNothing) {
  MemorySettings settings;
  SettingsDefaultsMerger merger(settings);
  temp.Write("a.reg",
             "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n\"Theme\"=\"3\"\r\n"
             "\"Number\"=dword:00000001\r\n[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright\\frmMain]\r\n"
             "\"Width\"=\"9000\"\r\n[HKEY_CURRENT_USER\\Software\\ZENT\\Other]\r\n\"Theme\"=\"4\"\r\n");
  EXPECT_TRUE(merger.Merge("C:\\a.reg"));
  EXPECT_EQ(settings.values.size(), 2u);
  EXPECT_EQ(settings.GetAppSetting("Theme", ""), "3");
  EXPECT_EQ(settings.GetAppSetting("Width", "", "frmMain"), "9000");

  temp.Write(
      "b.reg",
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n\"Theme\"=\"1\"\r\nbroken\r\n");
  EXPECT_FALSE(merger.Merge("C:\\b.reg"));
  EXPECT_EQ(settings.GetAppSetting("Theme", ""), "3");
  EXPECT_FALSE(merger.Merge("C:\\missing.reg"));
}

TEST_F(ResetAppearanceTest, OnWindowsRegeditMergesTheFileAndIsWaitedFor) {
  testing::RecordingLauncher launcher;
  RegeditDefaultsMerger merger(launcher);
  EXPECT_TRUE(merger.Merge("C:\\Program Files\\Sheetwright\\Init.reg"));
  EXPECT_EQ(launcher.waitedFor,
            (std::vector<std::string>{"REGEDIT /s C:\\Program Files\\Sheetwright\\Init.reg"}));
  launcher.runSucceeds = false;
  EXPECT_FALSE(merger.Merge("C:\\Init.reg"));
}

TEST_F(ResetAppearanceTest, TheShippedFileWritesTheKeyTheSettingsRead) {
  cadenv::PortableRegistry registry(temp.path() / "registry.reg");
  settings::RegistrySettings settings(registry);
  settings.SaveAppSetting("Theme", "6");
  settings.SaveAppSetting("frmMain", "moved", "Layout");
  ASSERT_TRUE(registry.MergeRegFile(kShippedDefaults));
  EXPECT_EQ(settings.GetAppSetting("Theme", ""), "2");
  EXPECT_EQ(settings.GetAppSetting("frmMain", "-", "Layout"), "-");
}

}  // namespace
}  // namespace sw::session
