#include "discovery/project_template_dir.h"

#include <gtest/gtest.h>

#include "fake_installation.h"

namespace sw::discovery {
namespace {

TEST(ProjectTemplateDirTest, SetqLineLosesItsParenthesisAndHalvesBackslashes) {
  const struct {
    const char* text;
    std::optional<std::string> expected;
  } cases[] = {
      {"(setq RDS_DEF \"%SYSTEMDRIVE%\\\\Mallar\\\\\")\r\n", "%SYSTEMDRIVE%\\Mallar\\"},
      {"(setq X 1)\r\n(SETQ rds_def   \"D:\\\\P\")\r\n(setq RDS_DEF \"E:\\\\Q\")\r\n", "D:\\P"},  // the first
      {"(setq RDS_DEF \"C:\\\\M\")", std::nullopt},    // the last line without a line end
      {"(setq RDS_DEF \"C:\\\\M\")\n", std::nullopt},  // LF alone is no line end here
      {"(setq X 1)\r\n", std::nullopt},
      {"RDS_DEF x\r\n", ""},  // one character: nothing is left after the cut
  };
  for (const auto& c : cases) EXPECT_EQ(ProjectRdsDefFromText(c.text), c.expected) << c.text;
}

TEST(ProjectTemplateDirTest, PlaceholdersExpandAtTheirFirstOccurrenceIgnoringCase) {
  EXPECT_EQ(ExpandFirst("%systemdrive%\\A\\%SYSTEMDRIVE%", "%SYSTEMDRIVE%", "C:"), "C:\\A\\%SYSTEMDRIVE%");
  EXPECT_EQ(ExpandFirst("D:\\A", "%SYSTEMDRIVE%", "C:"), "D:\\A");
  EXPECT_EQ(ExpandFirst("%VOLTARIS_USER%x", "%VOLTARIS_USER%", ""), "x");
}

TEST(ProjectTemplateDirTest, LastProjectOfTheInstallation) {
  testing::FakeInstallation install;
  EXPECT_EQ(ProjectTemplateDirectory(install.registry, install.environment), "C:\\Projektmallar\\");

  // Both placeholders, each expanded once.
  install.Write("Projekt/Kraft/kraft.cfg", "(setq RDS_DEF \"%VOLTARIS_USER%\\\\Mallar\\\\\")\r\n");
  install.Write("Anv/Mallar/x.txt", "");
  install.environment.Set("VOLTARIS_USER", "C:\\Anv");
  EXPECT_EQ(ProjectTemplateDirectory(install.registry, install.environment), "C:\\Anv\\Mallar\\");

  // The directory it names must exist.
  install.environment.Set("VOLTARIS_USER", "C:\\Saknas");
  EXPECT_EQ(ProjectTemplateDirectory(install.registry, install.environment), std::nullopt);

  // No .CFG twin, then no project folder.
  install.Remove("Projekt/Kraft/kraft.cfg");
  EXPECT_EQ(ProjectTemplateDirectory(install.registry, install.environment), std::nullopt);
  install.Remove("Projekt");
  EXPECT_EQ(ProjectTemplateDirectory(install.registry, install.environment), std::nullopt);
}

}  // namespace
}  // namespace sw::discovery
