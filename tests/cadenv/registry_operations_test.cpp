#include <gtest/gtest.h>

#include "cadenv/portable_registry.h"
#include "cadenv/registry.h"
#include "temp_dir.h"

namespace sw::cadenv {
namespace {

class RegistryOperations : public ::testing::Test {
 protected:
  RegistryOperations()
      : registry_(dir_.Write("registry.reg",
                             "REGEDIT4\r\n"
                             "[HKLM\\Software\\VOLTARIS]\r\n"
                             "\"Five\"=dword:00000005\r\n"
                             "\"Twelve\"=dword:0000000c\r\n"
                             "\"Big\"=dword:000004d2\r\n"
                             "\"RDS\"=\"D:\\\\Rds\\\\\"\r\n"
                             "\"Expand\"=hex(2):41,00\r\n"
                             "\"Binary\"=hex:41,42\r\n"
                             "\"List\"=hex(7):61,00,62,00,00\r\n"
                             "\"Empty\"=\"\"\r\n"
                             "\"WithNul\"=hex(1):61,00,62,00\r\n"
                             "[HKLM\\Software\\VOLTARIS\\zeta]\r\n"
                             "[HKLM\\Software\\VOLTARIS\\Alpha]\r\n"
                             "[HKLM\\Software\\VOLTARIS\\Alpha\\NoValues]\r\n")) {}

  sw::testing::TempDir dir_;
  PortableRegistry registry_;
};

TEST_F(RegistryOperations, ReadRegistryValueOnlyReadsNonEmptyStrings) {
  const auto read = [this](std::string_view name) {
    return ReadRegistryValue(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\", name, "default");
  };
  EXPECT_EQ(read("RDS"), "D:\\Rds\\");
  EXPECT_EQ(read("rds"), "D:\\Rds\\");
  EXPECT_EQ(read("Expand"), "default");
  EXPECT_EQ(read("Binary"), "default");
  EXPECT_EQ(read("Five"), "default");
  EXPECT_EQ(read("Empty"), "default");
  EXPECT_EQ(read("Missing"), "default");
  EXPECT_EQ(read("WithNul"), "a");
  EXPECT_EQ(ReadRegistryValue(registry_, RootKey::kCurrentUser, "Software\\VOLTARIS", "RDS", "none"), "none");
}

// Enumeration cuts every non-number value to its length less one: strings lose only their terminator,
// a string list keeps one of its two final NULs, binary data loses its last byte.
TEST_F(RegistryOperations, EnumRegistryValueWritesDwordsWithAtLeastThreeDigits) {
  std::vector<std::string> entries;
  for (std::size_t i = 0;; ++i) {
    const auto entry = EnumRegistryValue(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\", i);
    EXPECT_EQ(entry.index, i);
    if (entry.NotFound()) break;
    entries.push_back(entry.name + "=" + entry.data);
  }
  EXPECT_EQ(entries, (std::vector<std::string>{"Five=005", "Twelve=012", "Big=1234", "RDS=D:\\Rds\\",
                                               "Expand=A", "Binary=A", std::string("List=a\0b\0", 9),
                                               "Empty=", std::string("WithNul=a\0b", 11)}));
}

TEST_F(RegistryOperations, EnumerationAnswersNotFoundForEmptyAndMissingKeys) {
  const auto noValues = EnumRegistryValue(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\Alpha", 0);
  EXPECT_TRUE(noValues.NotFound());
  EXPECT_EQ(noValues.name, "Not Found");
  EXPECT_TRUE(EnumRegistryValue(registry_, RootKey::kLocalMachine, "Software\\Nothing", 0).NotFound());
  EXPECT_EQ(EnumRegistryKey(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\Alpha\\NoValues", 0),
            "Not Found");
  EXPECT_EQ(EnumRegistryKey(registry_, RootKey::kCurrentUser, "Software\\VOLTARIS", 0), "Not Found");
}

TEST_F(RegistryOperations, EnumRegistryKeyInWindowsOrder) {
  EXPECT_EQ(EnumRegistryKey(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\", 0), "Alpha");
  EXPECT_EQ(EnumRegistryKey(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\", 1), "zeta");
  EXPECT_EQ(EnumRegistryKey(registry_, RootKey::kLocalMachine, "Software\\VOLTARIS\\", 2), "Not Found");
}

}  // namespace
}  // namespace sw::cadenv
