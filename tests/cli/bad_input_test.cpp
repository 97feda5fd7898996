// Bad input on the command line: folders, pipes, empty names, damaged workbooks and settings files.
// Every case ends on a Swedish message and a non-zero exit, never a hang or a crash.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "cli_runner.h"
#include "excel/package/zip_archive.h"
#include "temp_dir.h"

namespace sw::testing {
namespace {


std::string Contains(const std::string& haystack, const std::string& needle) {
  return haystack.find(needle) != std::string::npos ? "" : "missing \"" + needle + "\" in:\n" + haystack;
}

class BadInputTest : public ::testing::Test {
 protected:
  std::filesystem::path TemplateFrom(std::string_view bytes, const std::string& name = "Mall.xlsx",
                                     const std::string& ini = kIni) {
    const auto workbook = temp.Write(name, bytes);
    temp.Write(std::filesystem::path(name).replace_extension(".ini").string(), ini);
    return workbook;
  }
  std::string GoodTemplateBytes() { return *base::ReadWholeFile(DataFile("templates/title_block.xlsx")); }

  TempDir temp;
  CliRunner cli{temp.path()};
};

// A pipe given as a file would hang a reader that opened it. Folders and devices are refused alike by the
// readers' own checks.
TEST_F(BadInputTest, SettingsFileThatIsNoFileEndsEveryCommandOnAMessage) {
  ASSERT_EQ(::mkfifo(cli.RegistryFile().c_str(), 0600), 0);
  const std::string message = "Filfel: Kan ej l\u00e4sa inst\u00e4llningsfilen " + cli.RegistryFile().string() +
                              " eftersom det inte \u00e4r n\u00e5gon vanlig fil.\n";
  const std::vector<std::vector<std::string>> commands = {
      {"environment"},
      {"preview", kExample},
      {"generate", "--dump", kExample, "--out", (temp.path() / "Lista.xlsx").string()},
  };
  for (const auto& command : commands) {
    const auto result = cli.Run(command);
    EXPECT_EQ(result.exitCode, 1) << command[0];
    EXPECT_EQ(result.err, message) << command[0];
  }
}

TEST_F(BadInputTest, DumpOrTemplateThatIsNoFileIsRefused) {
  const auto dump = temp.path() / "dump.txt";
  ASSERT_EQ(::mkfifo(dump.c_str(), 0600), 0);
  const auto target = temp.path() / "Lista.xlsx";
  auto result = cli.Run({"generate", "--dump", dump.string(), "--template",
                         TemplateFrom(GoodTemplateBytes()).string(), "--out", target.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err, "Filfel: Kan ej l\u00e4sa filen " + dump.string() +
                                     " eftersom det inte \u00e4r n\u00e5gon vanlig fil.\n"),
            "");
  EXPECT_FALSE(std::filesystem::exists(target));

  const auto workbook = temp.path() / "Pipa.xlsx";
  ASSERT_EQ(::mkfifo(workbook.c_str(), 0600), 0);
  temp.Write("Pipa.ini", kIni);
  result = cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err, "Filfel: Det g\u00e5r inte att \u00f6ppna " + workbook.string() +
                                     " eftersom det inte \u00e4r n\u00e5gon fil.\n"),
            "");
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(BadInputTest, EmptyFileNamesAreUsageErrors) {
  const std::vector<std::vector<std::string>> commands = {
      {"generate", "--dump", "", "--out", (temp.path() / "Lista.xlsx").string()},
      {"generate", "--dump", kExample, "--template", "", "--out", (temp.path() / "Lista.xlsx").string()},
      {"preview", ""},
      {"preview", kExample, "--template", ""},
  };
  for (const auto& command : commands) {
    const auto result = cli.Run(command);
    EXPECT_EQ(result.exitCode, 2) << command[0];
    EXPECT_EQ(Contains(result.err, "ett tomt filnamn anger ingen fil"), "");
  }
}

TEST_F(BadInputTest, BrokenSettingsFileIsKeptAsideAndTheUserToldWhere) {
  const std::string broken = "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\nskadad rad\r\n";
  temp.Write("registry.reg", broken);
  const auto workbook = TemplateFrom(GoodTemplateBytes());
  const auto result = cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out",
                               (temp.path() / "Lista.xlsx").string()});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  std::vector<std::filesystem::path> kept;
  for (const auto& entry : std::filesystem::directory_iterator(temp.path())) {
    if (entry.path().filename().string().starts_with("registry.reg.broken-")) kept.push_back(entry.path());
  }
  ASSERT_EQ(kept.size(), 1u);
  EXPECT_EQ(base::ReadWholeFile(kept[0]), broken);
  EXPECT_EQ(
      Contains(result.err, "Filfel: Inst\u00e4llningsfilen " + cli.RegistryFile().string() +
                               " gick inte att l\u00e4sa (rad 3: Raden g\u00e5r inte att tolka.). Den har "
                               "sparats som " +
                               kept[0].string() + " och en ny inst\u00e4llningsfil skrivs.\n"),
      "");
}

// Excel asked for where none is installed (this machine; plain Wine): the run ends on the program's
// own message and writes nothing. An engine the program does not have is a usage error.
TEST_F(BadInputTest, ExcelEngineWithoutExcelEndsOnTheActiveXMessage) {
  const auto workbook = TemplateFrom(GoodTemplateBytes());
  const auto target = temp.path() / "Lista.xlsx";
  auto result = cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out",
                         target.string(), "--engine", "excel"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err, "Active-X fel: Kan ej starta Microsoft Excel."), "");
  EXPECT_FALSE(std::filesystem::exists(target));

  result = cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string(),
                    "--engine", "calc"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(target));
}

// A template the engine will not open fails the check and generation alike in the engine's words, and
// generation refuses it before the target is asked for: the earlier result stays as it was. Which
// workbooks are refused, and how each is told, is the package engine's and the template check's matter.
TEST_F(BadInputTest, DamagedTemplateFailsCheckAndGenerationWithTheSameMessage) {
  auto entries = excel::ReadZipArchive(GoodTemplateBytes(), {});
  std::vector<excel::ZipSource> sources;
  for (const auto& entry : entries) {
    if (entry.name != "xl/styles.xml") sources.push_back({entry.name, entry.bytes});
  }
  const std::string damaged = excel::WriteZipArchive(sources);
  const auto workbook = TemplateFrom(damaged, "Stilar.xlsx");
  const std::string expected =
      "Filfel: Arbetsboken " + workbook.string() +
      " \u00e4r skadad: delen xl/styles.xml, som xl/workbook.xml h\u00e4nvisar till, "
      "saknas.\n";
  auto result = cli.Run({"check", workbook.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, expected);

  const auto target = temp.Write("Lista.xlsx", "det f\u00f6rra resultatet");
  result =
      cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, expected);
  EXPECT_EQ(base::ReadWholeFile(target), "det f\u00f6rra resultatet");
  EXPECT_EQ(base::ReadWholeFile(workbook), damaged);
}

TEST_F(BadInputTest, CheckWarnsAboutLayoutsGenerationRunsAsTheyAre) {
  const std::string ini = std::string(kIni).replace(std::string(kIni).find("ENDROW=40"), 9, "ENDROW=9");
  const auto result = cli.Run({"check", TemplateFrom(GoodTemplateBytes(), "Mall.xlsx", ini).string()});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "Varning: Sidl\u00e4ngden \u00e4r 0 eller mindre (STARTROW 10, ENDROW 9).\n");
}

// What is wrong is said as it is: a template that is not there, and a text number that does not exist.
TEST_F(BadInputTest, WrongInputIsToldAsWhatIsWrong) {
  const auto missing = temp.path() / "Saknas.xlsx";
  auto result = cli.Run({"generate", "--dump", kExample, "--template", missing.string(), "--out",
                         (temp.path() / "Lista.xlsx").string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "Fel: Hittar ej mallen " + missing.string() + ".\n");

  const auto workbook = TemplateFrom(GoodTemplateBytes());
  result = cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out",
                    (temp.path() / "Lista.xlsx").string(), "--field", "99=x"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(Contains(result.err, "Text nummer 99 finns inte; de gemensamma texterna har nummer 0 till 29."),
            "");
  EXPECT_EQ(result.err.find("expected"), std::string::npos) << result.err;
  EXPECT_FALSE(std::filesystem::exists(temp.path() / "Lista.xlsx"));
}

// A write-protected target is replaced only when the user says yes.
TEST_F(BadInputTest, WriteProtectedTargetIsReplacedOnlyWithYes) {
  const auto workbook = TemplateFrom(GoodTemplateBytes());
  const auto target = temp.Write("Skyddad.xlsx", "det f\u00f6rra resultatet");
  std::filesystem::permissions(target, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::group_read |
                                           std::filesystem::perms::others_read);
  auto result =
      cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "Skrivskyddad fil: Filen " + target.string() +
                            " \u00e4r skrivskyddad.\nVill du ers\u00e4tta den \u00e4nd\u00e5?\n"
                            "Fel: Filen " +
                            target.string() +
                            " har l\u00e4mnats or\u00f6rd. Ange --yes f\u00f6r att ers\u00e4tta den.\n");
  EXPECT_EQ(base::ReadWholeFile(target), "det f\u00f6rra resultatet");

  result = cli.Run(
      {"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string(), "--yes"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(base::ReadWholeFile(target)->starts_with("PK"));
}

}  // namespace
}  // namespace sw::testing
