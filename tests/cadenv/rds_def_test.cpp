#include "cadenv/rds_def.h"

#include <gtest/gtest.h>

#include "temp_dir.h"

namespace sw::cadenv {
namespace {

TEST(RdsDefTest, LineGivesTheQuotedDirectory) {
  const struct {
    const char* line;
    const char* expected;
  } cases[] = {
      {R"((setq RDS_DEF "C:\\VOLTARIS\\Mallar\\"))", "C:\\VOLTARIS\\Mallar\\"},
      {R"(  (SETQ rds_def "D:\\X"))  )", "D:\\X"},  // any case; every ")" goes, spaces trimmed
      {R"((setq RDS_DEF "\\\\server\\mallar\\"))", "\\\\server\\mallar\\"},  // "\\\\" halves to "\\"
      {R"((setq RDS_DEF "a\\\b"))", "a\\\\b"},  // three backslashes: one pair halved, one kept
      {"RDS_DEF", ""},
      {"RDS_DEF ", ""},
      {"RDS_DEFX(C:\\)", "(C:\\"},  // one character after the keyword is skipped, "(" stays
      {"no keyword here", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(RdsDefFromLine(c.line), c.expected) << c.line;
}

TEST(RdsDefTest, TheLastRdsDefLineOfTheFileWins) {
  testing::TempDir dir;
  const auto file = dir.Write("voltaris.cfg",
                              "; user\r\n(setq A 1)\r\n(setq RDS_DEF \"D:\\\\X\\\\\")\r\n\r\n\r\n\r\n\r\n\r\n"
                              "(setq RDS_DEF \"E:\\\\Y\\\\\")\r\n(setq B 2)");
  EXPECT_EQ(ReadRdsDef(file.string()), "E:\\Y\\");
}

TEST(RdsDefTest, LinesEndAtCrLfCrOrLfAndTheLastNeedsNoEnd) {
  testing::TempDir dir;
  EXPECT_EQ(ReadRdsDef(dir.Write("a.cfg", "(setq RDS_DEF \"A\")\n(setq X 1)\n").string()), "A");
  EXPECT_EQ(ReadRdsDef(dir.Write("b.cfg", "(setq X 1)\r(setq RDS_DEF \"B\")").string()), "B");
  // A Windows-1252 letter comes back as UTF-8.
  EXPECT_EQ(ReadRdsDef(dir.Write("c.cfg", "(setq RDS_DEF \"C:\\\\M\xe5lar\")\r\n").string()),
            "C:\\M\xc3\xa5lar");
}

TEST(RdsDefTest, MissingFileOrNoLineGivesEmpty) {
  testing::TempDir dir;
  EXPECT_EQ(ReadRdsDef((dir.path() / "missing.cfg").string()), "");
  EXPECT_EQ(ReadRdsDef(dir.path().string()), "");  // a folder is no file
  EXPECT_EQ(ReadRdsDef(dir.Write("none.cfg", "(setq X 1)\r\n").string()), "");
  EXPECT_EQ(ReadRdsDef(dir.Write("empty.cfg", "(setq RDS_DEF \"X\")\r\nRDS_DEF\r\n").string()), "");
}

}  // namespace
}  // namespace sw::cadenv
