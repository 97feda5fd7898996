#include "cadenv/portable_registry.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <vector>

#include "base/environment.h"
#include "base/file_io.h"
#include "fake_environment.h"
#include "temp_dir.h"

namespace sw::cadenv {
namespace {

using sw::testing::TempDir;

std::vector<std::filesystem::path> BrokenCopies(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> copies;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().filename().string().find(".broken-") != std::string::npos)
      copies.push_back(entry.path());
  }
  return copies;
}

std::string Repeat(std::string_view piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

std::string ReadValue(Registry& registry, std::string_view key, std::string_view name) {
  return ReadRegistryValue(registry, RootKey::kCurrentUser, key, name, "<default>");
}

// A store on "registry.reg" in a fresh folder; the file is read again at every call, so a test may
// write it after the store is made.
class PortableRegistryTest : public ::testing::Test {
 protected:
  TempDir dir;
  const std::filesystem::path file = dir.path() / "registry.reg";
  PortableRegistry registry{file};
};

TEST_F(PortableRegistryTest, FirstWriteCreatesFoldersAndRegeditFile) {
  PortableRegistry nested(dir.path() / "config" / "sheetwright" / "registry.reg");
  EXPECT_FALSE(nested.QueryValue(RootKey::kCurrentUser, "Software\\ZENT", "x"));
  EXPECT_FALSE(std::filesystem::exists(nested.FilePath()));

  ASSERT_TRUE(
      nested.SetStringValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright\\frmMain", "Top", "120"));
  EXPECT_EQ(ReadValue(nested, "software\\zent\\sheetwright\\FRMMAIN", "top"), "120");
  EXPECT_EQ(EnumRegistryKey(nested, RootKey::kCurrentUser, "Software\\ZENT", 0), "Sheetwright");
  const auto bytes = base::ReadWholeFile(nested.FilePath());
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->substr(0, 4), std::string("\xff\xfeW\0", 4));
}

TEST_F(PortableRegistryTest, EveryReadSeesAnotherWritersChanges) {
  PortableRegistry writer(file);
  writer.SetStringValue(RootKey::kCurrentUser, "K", "v", "1");
  EXPECT_EQ(ReadValue(registry, "K", "v"), "1");
  writer.SetStringValue(RootKey::kCurrentUser, "K", "v", "22");
  EXPECT_EQ(ReadValue(registry, "K", "v"), "22");
  EXPECT_TRUE(writer.DeleteValue(RootKey::kCurrentUser, "K", "V"));
  EXPECT_EQ(ReadValue(registry, "K", "v"), "<default>");
  EXPECT_FALSE(writer.DeleteValue(RootKey::kCurrentUser, "K", "v"));
  EXPECT_FALSE(writer.DeleteValue(RootKey::kCurrentUser, "No\\Key", "v"));
}

TEST_F(PortableRegistryTest, NamesWithLineBreaksAreRefused) {
  EXPECT_FALSE(registry.SetStringValue(RootKey::kCurrentUser, "K", "two\nlines", "1"));
  EXPECT_FALSE(registry.SetStringValue(RootKey::kCurrentUser, "K\r\nX", "v", "1"));
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "data may\r\nhave them"));
  EXPECT_EQ(ReadValue(registry, "K", "v"), "data may\r\nhave them");
}

TEST_F(PortableRegistryTest, BrokenFileReadsEmptyAndIsKeptAsideAndToldOfBeforeTheFirstWrite) {
  const std::string broken = "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=\"1\"\r\nthis line is damaged\r\n";
  dir.Write("registry.reg", broken);
  std::vector<std::filesystem::path> told;
  registry.OnBrokenFileKept([&](const std::filesystem::path& backup) { told.push_back(backup); });

  EXPECT_EQ(ReadValue(registry, "K", "v"), "<default>");
  EXPECT_EQ(registry.LastReadResult().status, RegParseStatus::kUnrecognisedLine);
  EXPECT_EQ(registry.LastReadResult().line, 4u);
  EXPECT_EQ(base::ReadWholeFile(file), broken);  // reading never rewrites
  EXPECT_TRUE(BrokenCopies(dir.path()).empty());

  // What the damaged file seems to hold is no value: storing the same is a write.
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  const auto copies = BrokenCopies(dir.path());
  ASSERT_EQ(copies.size(), 1u);
  EXPECT_EQ(told, copies);
  EXPECT_EQ(base::ReadWholeFile(copies[0]), broken);
  EXPECT_EQ(ReadValue(registry, "K", "v"), "1");
  EXPECT_TRUE(registry.LastReadResult());

  registry.SetStringValue(RootKey::kCurrentUser, "K", "x", "3");
  EXPECT_EQ(BrokenCopies(dir.path()).size(), 1u);
  EXPECT_EQ(told.size(), 1u);
}

TEST_F(PortableRegistryTest, EmptyFileIsAnEmptyRegistryNotABrokenOne) {
  dir.Write("registry.reg", "");
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  EXPECT_TRUE(BrokenCopies(dir.path()).empty());
}

TEST_F(PortableRegistryTest, MergeAppliesKeysValuesAndDeletions) {
  registry.SetStringValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright", "Theme", "4");
  registry.SetStringValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright\\Layout", "Bars", "x");
  const auto initReg = dir.Write("Init.reg",
                                 "Windows Registry Editor Version 5.00\r\n\r\n"
                                 "[-HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright\\Layout]\r\n\r\n"
                                 "[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n"
                                 "\"Theme\"=-\r\n\"UseSlashTwo\"=\"1\"\r\n");
  const auto result = registry.MergeRegFile(initReg);
  ASSERT_TRUE(result) << result.description;
  EXPECT_EQ(ReadValue(registry, "Software\\ZENT\\Sheetwright", "Theme"), "<default>");
  EXPECT_EQ(ReadValue(registry, "Software\\ZENT\\Sheetwright", "UseSlashTwo"), "1");
  EXPECT_EQ(EnumRegistryKey(registry, RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright", 0), "Not Found");
}

TEST_F(PortableRegistryTest, MergeOfABadFileChangesNothing) {
  registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1");
  const auto before = base::ReadWholeFile(registry.FilePath());
  const auto bad = dir.Write("bad.reg", "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=-\r\n\"w\"=dword:xyz\r\n");
  const auto result = registry.MergeRegFile(bad);
  EXPECT_EQ(result.status, RegParseStatus::kBadValueData);
  EXPECT_EQ(result.line, 4u);
  EXPECT_EQ(base::ReadWholeFile(registry.FilePath()), before);
  EXPECT_EQ(registry.MergeRegFile(dir.path() / "missing.reg").status, RegParseStatus::kUnreadable);
}

struct PathCase {
  testing::FakeEnvironment environment;
  std::filesystem::path expected;
};

// The XDG and home folder layout is the Linux one; Windows keeps the settings in the registry.
TEST(PosixOnlyPortableRegistry, DefaultPathFromTheEnvironment) {
  const std::vector<PathCase> cases = {
      {{{"SHEETWRIGHT_REGISTRY", "/srv/reg.reg"}, {"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/home/u"}},
       "/srv/reg.reg"},
      {{{"SHEETWRIGHT_REGISTRY", ""}, {"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/home/u"}},
       "/xdg/sheetwright/registry.reg"},
      {{{"XDG_CONFIG_HOME", "relative"}, {"HOME", "/home/u"}}, "/home/u/.config/sheetwright/registry.reg"},
      {{{"HOME", "/home/u"}}, "/home/u/.config/sheetwright/registry.reg"},
  };
  for (const auto& c : cases) EXPECT_EQ(PortableRegistry::DefaultPath(c.environment), c.expected);
}

TEST_F(PortableRegistryTest, AFileEditedInPlaceIsReadAgain) {
  dir.Write("registry.reg", "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=\"1\"\r\n");
  EXPECT_EQ(ReadValue(registry, "K", "v"), "1");
  EXPECT_EQ(ReadValue(registry, "K", "v"), "1");
  // Same inode, same size: an editor's save still moves the modification time.
  const auto before = std::filesystem::last_write_time(file);
  dir.Write("registry.reg", "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=\"2\"\r\n");
  std::filesystem::last_write_time(file, before + std::chrono::seconds(1));
  EXPECT_EQ(ReadValue(registry, "K", "v"), "2");
  std::filesystem::remove(file);
  EXPECT_EQ(ReadValue(registry, "K", "v"), "<default>");
}

// Each run stores the folders and lengths it used; most runs store what the last one did. A value the
// file already holds leaves the file as the user or regedit wrote it.
TEST_F(PortableRegistryTest, StoringWhatTheFileAlreadyHoldsLeavesItAsItIs) {
  const std::string written = "REGEDIT4\r\n\r\n[HKCU\\K]\r\n\"v\"=\"1\"\r\n\"e\"=\"\"\r\n";
  dir.Write("registry.reg", written);
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "k", "V", "1"));
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "e", ""));
  EXPECT_EQ(base::ReadWholeFile(file), written);

  // Another value, another type or a value not there yet is written.
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "2"));
  EXPECT_NE(base::ReadWholeFile(file), written);
  EXPECT_EQ(ReadValue(registry, "K", "v"), "2");
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "w", ""));
  EXPECT_EQ(EnumRegistryValue(registry, RootKey::kCurrentUser, "K", 2).name, "w");
}

TEST_F(PortableRegistryTest, AStoreThatIsNoFileReadsAsDefaultsAndRefusesWrites) {
  std::filesystem::create_directory(file);
  EXPECT_EQ(ReadValue(registry, "K", "v"), "<default>");
  EXPECT_EQ(registry.ReadNow().status, RegParseStatus::kUnreadable);
  EXPECT_FALSE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  EXPECT_TRUE(std::filesystem::is_directory(file));
}

TEST_F(PortableRegistryTest, EnumerationEndsAtAnEntryLongerThanItsBuffers) {
  // Windows enumerates into 2048-character buffers for the name and for the data; what does not fit
  // with its terminating NUL fails, which the enumeration reports as "Not Found".
  struct Case {
    std::string name;
    std::string data;
    bool listed;
  };
  const Case cases[] = {
      {"v", std::string(2047, 'x'), true}, {"v", std::string(2048, 'x'), false},
      {"v", Repeat("\u00e5", 2047), true},  // characters count, not the bytes of their UTF-8
      {std::string(2047, 'n'), "x", true}, {std::string(2048, 'n'), "x", false},
  };
  int keys = 0;
  for (const Case& c : cases) {
    const std::string key = "K" + std::to_string(++keys);  // a key of its own for each case
    ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, key, c.name, c.data));
    ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, key, "after", "1"));
    const auto first = EnumRegistryValue(registry, RootKey::kCurrentUser, key, 0);
    if (c.listed) {
      EXPECT_EQ(first.name, c.name);
      EXPECT_EQ(first.data, c.data);
    } else {
      EXPECT_EQ(first.name, "Not Found");
      EXPECT_EQ(first.data, "Not Found");
    }
    // A read by name has no such buffer.
    EXPECT_EQ(ReadValue(registry, key, c.name), c.data);
  }
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "L\\" + std::string(2048, 's'), "v", "1"));
  EXPECT_EQ(EnumRegistryKey(registry, RootKey::kCurrentUser, "L", 0), "Not Found");
}

}  // namespace
}  // namespace sw::cadenv
