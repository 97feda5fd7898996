#include "settings/overlay_settings.h"

#include <gtest/gtest.h>

#include "memory_settings.h"

namespace sw::settings {
namespace {

TEST(OverlaySettings, OverridesAnswerReadsAndWritesReachTheStore) {
  sw::testing::MemorySettings store;
  store.SaveAppSetting("Theme", "4");
  store.SaveAppSetting("UseSlashTwo", "0");
  OverlaySettings settings(store);
  settings.Override("theme", "1");
  settings.Override("PageNoLen", "");
  settings.Override("Top", "300", "FRMMAIN");

  EXPECT_EQ(settings.GetAppSetting("Theme", "2"), "1");
  EXPECT_EQ(settings.GetAppSetting("PageNoLen", "1"), "1");  // empty reads as the default, as stored ones do
  EXPECT_EQ(settings.GetAppSetting("Top", "0", "frmMain"), "300");
  EXPECT_EQ(settings.GetAppSetting("Top", "0"), "0");
  EXPECT_EQ(settings.GetAppSetting("UseSlashTwo", "1"), "0");

  settings.SaveAppSetting("Theme", "3");
  EXPECT_EQ(store.GetAppSetting("Theme", "2"), "3");
  EXPECT_EQ(settings.GetAppSetting("Theme", "2"), "1");  // the override holds for the whole run
  settings.DeleteAppSetting("UseSlashTwo");
  EXPECT_EQ(settings.GetAppSetting("UseSlashTwo", "1"), "1");
}

TEST(ReadOnlyOverlayTest, ReadsThroughAndDropsWrites) {
  testing::MemorySettings store;
  store.SaveAppSetting("LastVoltDmp", "C:\\a.txt");
  OverlaySettings readOnly(store, OverlaySettings::Writes::kDropped);
  readOnly.Override("UseSlashTwo", "0");
  EXPECT_EQ(readOnly.GetAppSetting("LastVoltDmp", ""), "C:\\a.txt");
  EXPECT_EQ(readOnly.GetAppSetting("UseSlashTwo", "1"), "0");
  readOnly.SaveAppSetting("LastVoltDmp", "C:\\b.txt");
  readOnly.DeleteAppSetting("LastVoltDmp");
  EXPECT_EQ(store.GetAppSetting("LastVoltDmp", ""), "C:\\a.txt");
}

}  // namespace
}  // namespace sw::settings
