#include "settings/settings.h"

#include <gtest/gtest.h>

#include "cadenv/portable_registry.h"
#include "temp_dir.h"

namespace sw::settings {
namespace {

class RegistrySettingsTest : public ::testing::Test {
 protected:
  RegistrySettingsTest()
      : registry_(dir_.Write("registry.reg",
                             "Windows Registry Editor Version 5.00\r\n\r\n"
                             "[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n"
                             "\"Theme\"=\"4\"\r\n"
                             "\"PageNoLen\"=\"\"\r\n"
                             "\"UseSlashTwo\"=dword:00000000\r\n\r\n"
                             "[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright\\frmMain]\r\n"
                             "\"Top\"=\"120\"\r\n\r\n"
                             "[HKEY_CURRENT_USER\\Software\\ZENT\\Other]\r\n"
                             "\"Theme\"=\"5\"\r\n")),
        settings_(registry_) {}

  sw::testing::TempDir dir_;
  cadenv::PortableRegistry registry_;
  RegistrySettings settings_;
};

// Which values read as set is ReadRegistryValue's rule (registry_operations_test); here it reaches settings.
TEST_F(RegistrySettingsTest, OnlyNonEmptyStringsAreRead) {
  EXPECT_EQ(settings_.GetAppSetting("Theme", "2"), "4");
  EXPECT_EQ(settings_.GetAppSetting("theme", "2"), "4");
  EXPECT_EQ(settings_.GetAppSetting("PageNoLen", "1"), "1");
  EXPECT_EQ(settings_.GetAppSetting("UseSlashTwo", "1"), "1");
  EXPECT_EQ(settings_.GetAppSetting("Missing", "x"), "x");
}

TEST_F(RegistrySettingsTest, SectionsAndApplicationNameChooseTheKey) {
  EXPECT_EQ(settings_.GetAppSetting("Top", "0", "frmMain"), "120");
  EXPECT_EQ(settings_.GetAppSetting("Top", "0"), "0");
  EXPECT_EQ(settings_.GetAppSetting("Theme", "2", {}, "Other"), "5");
  EXPECT_EQ(RegistrySettings::KeyPath("frmMain"), "Software\\ZENT\\Sheetwright\\frmMain");
}

TEST_F(RegistrySettingsTest, SaveCreatesTheSectionAndDeleteRemovesTheValue) {
  settings_.SaveAppSetting("Width", "9000", "frmNew");
  EXPECT_EQ(settings_.GetAppSetting("Width", "5500", "frmNew"), "9000");
  EXPECT_EQ(cadenv::ReadRegistryValue(registry_, cadenv::RootKey::kCurrentUser,
                                      "Software\\ZENT\\Sheetwright\\frmNew", "Width", ""),
            "9000");
  settings_.SaveAppSetting("UseSlashTwo", "0");  // a REG_DWORD becomes the REG_SZ the program writes
  EXPECT_EQ(settings_.GetAppSetting("UseSlashTwo", "1"), "0");
  settings_.DeleteAppSetting("Theme");
  EXPECT_EQ(settings_.GetAppSetting("Theme", "2"), "2");
  settings_.DeleteAppSetting("Layout", "NoSuchSection");  // errors are ignored
}

}  // namespace
}  // namespace sw::settings
