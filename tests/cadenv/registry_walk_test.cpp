#include "cadenv/registry_walk.h"

#include <gtest/gtest.h>

#include "cadenv/portable_registry.h"
#include "temp_dir.h"

namespace sw::cadenv {
namespace {

using List = std::vector<std::string>;

class RegistryWalkTest : public ::testing::Test {
 protected:
  List Walk(std::string_view regText, std::string_view valueName,
            std::string_view keyPath = "Software\\VOLTARIS\\") {
    PortableRegistry registry(dir_.path() / "store.reg");
    const auto file = dir_.Write("walk.reg", std::string("REGEDIT4\n\n").append(regText));
    EXPECT_TRUE(registry.MergeRegFile(file));
    return CollectRegistryValues(registry, RootKey::kLocalMachine, keyPath, valueName);
  }

  testing::TempDir dir_;
};

TEST_F(RegistryWalkTest, ValuesOfAKeyComeBeforeItsSubkeysDepthFirst) {
  const char* reg = R"([HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS\B]
"RDS"="B"
[HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS\a\deep]
"RDS"="a-deep"
[HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS\a]
"RDS"="a"
[HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS]
"RDS"="root"
)";
  // Subkeys enumerate sorted ignoring case: a (with a\deep below it) before B.
  EXPECT_EQ(Walk(reg, "RDS"), (List{"", "root", "a", "a-deep", "B"}));
}

TEST_F(RegistryWalkTest, FirstSpellingWinsAndOnlyTheExactNameCounts) {
  const char* reg = R"([HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS]
"RDS"="C:\\Mallar\\"
"Empty"=""
"RDS2"="C:\\Annan\\"
[HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS\Sub]
"RDS"="c:\\MALLAR\\"
[HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS\Sub2]
"rds"="C:\\Gemener\\"
[HKEY_LOCAL_MACHINE\SOFTWARE\VOLTARIS\Sub3]
"RDS"=""
"Count"=dword:00000005
)";
  EXPECT_EQ(Walk(reg, "RDS"), (List{"", "C:\\Mallar\\"}));
  // Enumerated numbers take part as their text.
  EXPECT_EQ(Walk(reg, "Count"), (List{"", "005"}));
}

TEST_F(RegistryWalkTest, MissingKeyLeavesOnlyThePlaceholder) {
  EXPECT_EQ(Walk("", "RDS"), List{""});
  EXPECT_EQ(Walk("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Annat]\n\"RDS\"=\"x\"\n", "RDS"), List{""});
}

// Records the key paths the walk asks for, to see how it spells them.
class RecordingRegistry final : public Registry {
 public:
  explicit RecordingRegistry(Registry& inner) : inner_(inner) {}
  std::vector<std::string> valuePaths;

  std::optional<RegistryValue> QueryValue(RootKey root, std::string_view keyPath,
                                          std::string_view valueName) override {
    return inner_.QueryValue(root, keyPath, valueName);
  }
  std::optional<std::string> SubkeyAt(RootKey root, std::string_view keyPath, std::size_t index) override {
    return inner_.SubkeyAt(root, keyPath, index);
  }
  std::optional<RegistryValue> ValueAt(RootKey root, std::string_view keyPath, std::size_t index) override {
    if (index == 0) valuePaths.emplace_back(keyPath);
    return inner_.ValueAt(root, keyPath, index);
  }
  bool SetStringValue(RootKey, std::string_view, std::string_view, std::string_view) override {
    return false;
  }
  bool DeleteValue(RootKey, std::string_view, std::string_view) override { return false; }

 private:
  Registry& inner_;
};

TEST_F(RegistryWalkTest, SubkeyPathsEndInABackslash) {
  PortableRegistry store(dir_.path() / "store.reg");
  ASSERT_TRUE(store.MergeRegFile(dir_.Write(
      "w.reg", "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS\\ic\\Settings]\n\"RDS\"=\"x\"\n")));
  RecordingRegistry registry(store);
  EXPECT_EQ(CollectRegistryValues(registry, RootKey::kLocalMachine, "Software\\VOLTARIS\\", "RDS"),
            (List{"", "x"}));
  EXPECT_EQ(registry.valuePaths,
            (List{"Software\\VOLTARIS\\", "Software\\VOLTARIS\\ic\\", "Software\\VOLTARIS\\ic\\Settings\\"}));
}

}  // namespace
}  // namespace sw::cadenv
