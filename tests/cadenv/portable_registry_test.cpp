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

using sw::testing::DataFile;
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

TEST(PortableRegistry, FirstWriteCreatesFoldersAndRegeditFile) {
  TempDir dir;
  PortableRegistry registry(dir.path() / "config" / "sheetwright" / "registry.reg");
  EXPECT_FALSE(registry.QueryValue(RootKey::kCurrentUser, "Software\\ZENT", "x"));
  EXPECT_FALSE(std::filesystem::exists(registry.FilePath()));

  ASSERT_TRUE(
      registry.SetStringValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright\\frmMain", "Top", "120"));
  EXPECT_EQ(ReadValue(registry, "software\\zent\\sheetwright\\FRMMAIN", "top"), "120");
  EXPECT_EQ(EnumRegistryKey(registry, RootKey::kCurrentUser, "Software\\ZENT", 0), "Sheetwright");
  const auto bytes = base::ReadWholeFile(registry.FilePath());
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->substr(0, 4), std::string("\xff\xfeW\0", 4));
}

TEST(PortableRegistry, EveryReadSeesAnotherWritersChanges) {
  TempDir dir;
  PortableRegistry reader(dir.path() / "registry.reg");
  PortableRegistry writer(dir.path() / "registry.reg");
  writer.SetStringValue(RootKey::kCurrentUser, "K", "v", "1");
  EXPECT_EQ(ReadValue(reader, "K", "v"), "1");
  writer.SetStringValue(RootKey::kCurrentUser, "K", "v", "22");
  EXPECT_EQ(ReadValue(reader, "K", "v"), "22");
  EXPECT_TRUE(writer.DeleteValue(RootKey::kCurrentUser, "K", "V"));
  EXPECT_EQ(ReadValue(reader, "K", "v"), "<default>");
  EXPECT_FALSE(writer.DeleteValue(RootKey::kCurrentUser, "K", "v"));
  EXPECT_FALSE(writer.DeleteValue(RootKey::kCurrentUser, "No\\Key", "v"));
}

TEST(PortableRegistry, ResettingAValueKeepsItsPlace) {
  TempDir dir;
  PortableRegistry registry(dir.path() / "registry.reg");
  for (const char* name : {"b", "a", "c"}) registry.SetStringValue(RootKey::kCurrentUser, "K", name, "1");
  registry.SetStringValue(RootKey::kCurrentUser, "K", "A", "2");
  EXPECT_EQ(EnumRegistryValue(registry, RootKey::kCurrentUser, "K", 1).name, "a");
  EXPECT_EQ(EnumRegistryValue(registry, RootKey::kCurrentUser, "K", 1).data, "2");
}

TEST(PortableRegistry, NamesWithLineBreaksAreRefused) {
  TempDir dir;
  PortableRegistry registry(dir.path() / "registry.reg");
  EXPECT_FALSE(registry.SetStringValue(RootKey::kCurrentUser, "K", "two\nlines", "1"));
  EXPECT_FALSE(registry.SetStringValue(RootKey::kCurrentUser, "K\r\nX", "v", "1"));
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "data may\r\nhave them"));
  EXPECT_EQ(ReadValue(registry, "K", "v"), "data may\r\nhave them");
}

TEST(PortableRegistry, BrokenFileReadsEmptyAndIsKeptBeforeTheFirstWrite) {
  TempDir dir;
  const std::string broken = "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=\"1\"\r\nthis line is damaged\r\n";
  const auto file = dir.Write("registry.reg", broken);
  PortableRegistry registry(file);

  EXPECT_EQ(ReadValue(registry, "K", "v"), "<default>");
  EXPECT_EQ(registry.LastReadResult().status, RegParseStatus::kUnrecognisedLine);
  EXPECT_EQ(registry.LastReadResult().line, 4u);
  EXPECT_EQ(base::ReadWholeFile(file), broken);  // reading never rewrites
  EXPECT_TRUE(BrokenCopies(dir.path()).empty());

  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "w", "2"));
  const auto copies = BrokenCopies(dir.path());
  ASSERT_EQ(copies.size(), 1u);
  EXPECT_EQ(base::ReadWholeFile(copies[0]), broken);
  EXPECT_EQ(ReadValue(registry, "K", "w"), "2");
  EXPECT_TRUE(registry.LastReadResult());

  registry.SetStringValue(RootKey::kCurrentUser, "K", "x", "3");
  EXPECT_EQ(BrokenCopies(dir.path()).size(), 1u);
}

TEST(PortableRegistry, EmptyFileIsAnEmptyRegistryNotABrokenOne) {
  TempDir dir;
  PortableRegistry registry(dir.Write("registry.reg", ""));
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  EXPECT_TRUE(BrokenCopies(dir.path()).empty());
}

TEST(PortableRegistry, MergeAppliesKeysValuesAndDeletions) {
  TempDir dir;
  PortableRegistry registry(dir.path() / "registry.reg");
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

  ASSERT_TRUE(registry.MergeRegFile(DataFile("registry/regedit4_ansi.reg")));
  EXPECT_EQ(
      ReadRegistryValue(registry, RootKey::kLocalMachine, "SOFTWARE\\VOLTARIS\\Projekt Ängen", "RDS", ""),
      "C:\\Ritningar\\Kopplingsschema för ångpanna\\");
}

TEST(PortableRegistry, MergeOfABadFileChangesNothing) {
  TempDir dir;
  PortableRegistry registry(dir.path() / "registry.reg");
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

TEST(PortableRegistry, AFileEditedInPlaceIsReadAgain) {
  TempDir dir;
  const auto file = dir.Write("registry.reg", "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=\"1\"\r\n");
  PortableRegistry registry(file);
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
TEST(PortableRegistry, StoringWhatTheFileAlreadyHoldsLeavesItAsItIs) {
  TempDir dir;
  const std::string written = "REGEDIT4\r\n\r\n[HKCU\\K]\r\n\"v\"=\"1\"\r\n\"e\"=\"\"\r\n";
  const auto file = dir.Write("registry.reg", written);
  PortableRegistry registry(file);
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

  // A file that did not parse holds nothing: the value is written, and the file kept aside first.
  dir.Write("registry.reg", "REGEDIT4\r\n[HKCU\\K]\r\n\"v\"=\"2\"\r\nskadad\r\n");
  EXPECT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "2"));
  EXPECT_EQ(BrokenCopies(dir.path()).size(), 1u);
  EXPECT_EQ(ReadValue(registry, "K", "v"), "2");
}

TEST(PortableRegistry, KeepingABrokenFileAsideIsTold) {
  TempDir dir;
  const auto file = dir.Write("registry.reg", "REGEDIT4\r\nskadad\r\n");
  PortableRegistry registry(file);
  std::vector<std::filesystem::path> told;
  registry.OnBrokenFileKept([&](const std::filesystem::path& backup) { told.push_back(backup); });
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(BrokenCopies(dir.path()), told);
  EXPECT_EQ(base::ReadWholeFile(told[0]), "REGEDIT4\r\nskadad\r\n");
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "2"));
  EXPECT_EQ(told.size(), 1u);
}

TEST(PortableRegistry, AStoreThatIsNoFileReadsAsDefaultsAndRefusesWrites) {
  TempDir dir;
  const auto folder = dir.path() / "registry.reg";
  std::filesystem::create_directory(folder);
  PortableRegistry registry(folder);
  EXPECT_EQ(ReadValue(registry, "K", "v"), "<default>");
  EXPECT_EQ(registry.ReadNow().status, RegParseStatus::kUnreadable);
  EXPECT_FALSE(registry.SetStringValue(RootKey::kCurrentUser, "K", "v", "1"));
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST(PortableRegistry, EnumerationEndsAtAnEntryLongerThanItsBuffers) {
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
  for (const Case& c : cases) {
    TempDir dir;
    PortableRegistry registry(dir.path() / "registry.reg");
    ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", c.name, c.data));
    ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K", "after", "1"));
    const auto first = EnumRegistryValue(registry, RootKey::kCurrentUser, "K", 0);
    if (c.listed) {
      EXPECT_EQ(first.name, c.name);
      EXPECT_EQ(first.data, c.data);
    } else {
      EXPECT_EQ(first.name, "Not Found");
      EXPECT_EQ(first.data, "Not Found");
    }
    // A read by name has no such buffer.
    EXPECT_EQ(ReadValue(registry, "K", c.name), c.data);
  }
  TempDir dir;
  PortableRegistry registry(dir.path() / "registry.reg");
  ASSERT_TRUE(registry.SetStringValue(RootKey::kCurrentUser, "K\\" + std::string(2048, 's'), "v", "1"));
  EXPECT_EQ(EnumRegistryKey(registry, RootKey::kCurrentUser, "K", 0), "Not Found");
}

}  // namespace
}  // namespace sw::cadenv
