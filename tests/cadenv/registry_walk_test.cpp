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

}  // namespace
}  // namespace sw::cadenv
