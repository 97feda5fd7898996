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

std::string WithEntries(const std::string& workbook, const std::string& drop, const std::string& part = {},
                        const std::string& from = {}, const std::string& to = {}) {
  auto entries = excel::ReadZipArchive(workbook, {});
  std::vector<excel::ZipSource> sources;
  for (auto& entry : entries) {
    if (entry.name == drop) continue;
    if (entry.name == part) entry.bytes.replace(entry.bytes.find(from), from.size(), to);
    sources.push_back({entry.name, entry.bytes});
  }
  return excel::WriteZipArchive(sources);
}

TEST_F(BadInputTest, CheckOpensTheWorkbookAsGenerationDoes) {
  const std::string good = GoodTemplateBytes();
  const auto withFirstRow = [&good](const std::string& number) {  // the page sheet's first row is row 1
    return WithEntries(good, "", "xl/worksheets/sheet2.xml", "<row r=\"1\"", "<row r=\"" + number + "\"");
  };
  struct Case {
    std::string name;
    std::string bytes;
    std::string ini;
    std::string message;
  };
  const std::string missingSheet =
      std::string(kIni).replace(std::string(kIni).find("Template=Mall"), 13, "Template=Sidor");
  const std::vector<Case> cases = {
      {"Trunkerad.xlsx", good.substr(0, good.size() / 2), kIni,
       "Filfel: Filen \u00e4r inte en giltig arbetsbok (zip-arkivet \u00e4r skadat: det \u00e4r inget "
       "zip-arkiv).\n"},
      {"Gammal.xls", std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + std::string(600, '\0'), kIni,
       "Filfel: Filen \u00e4r en arbetsbok i det \u00e4ldre Excel-formatet (.xls) eller \u00e4r krypterad "
       "och "
       "kan inte \u00f6ppnas. Spara den som .xlsx eller .xlsm.\n"},
      {"Sidor.xlsx", good, missingSheet,
       "Sheetwright: Fliken 'Sidor' saknas i excelfilen\nSheetwright: Redigera mallfilen s\u00e5 att den "
       "uppfyller kraven.\n"},
      {"Rader.xlsx", withFirstRow("2147483647"), kIni,
       "Filfel: Kalkylbladet har en rad utanf\u00f6r Excels blad (rad 2147483647).\n"},
  };
  for (const auto& c : cases) {
    const auto workbook = TemplateFrom(c.bytes, c.name, c.ini);
    const auto result = cli.Run({"check", workbook.string()});
    EXPECT_EQ(result.exitCode, 1) << c.name;
    EXPECT_EQ(result.out, "") << c.name;
    EXPECT_EQ(result.err, c.message) << c.name;
    EXPECT_EQ(result.err.find("Not a zip"), std::string::npos);
  }
  // The last row Excel has is a row like any other.
  const auto workbook = TemplateFrom(withFirstRow("1048576"), "Sista.xlsx");
  EXPECT_EQ(cli.Run({"check", workbook.string()}).exitCode, 0);
}

// A template that names a part it lacks, one with a document type declaration and one whose name
// promises another format fail the check, naming the file and the part, and generation refuses them
// before the target is asked for: the earlier result stays as it was. Which parts are missed is the
// package reader's matter; one of them shows the refusal reaches the user.
TEST_F(BadInputTest, DamagedOrMisnamedTemplateFailsCheckAndGeneration) {
  const std::string good = GoodTemplateBytes();
  struct Case {
    std::string name;
    std::string bytes;
    std::string message;  // after "Filfel: " and the path
  };
  const std::vector<Case> cases = {
      {"Stilar.xlsx", WithEntries(good, "xl/styles.xml"),
       " \u00e4r skadad: delen xl/styles.xml, som xl/workbook.xml h\u00e4nvisar till, saknas.\n"},
      {"Doctype.xlsx",
       WithEntries(good, "", "xl/sharedStrings.xml", "<sst ",
                   "<!DOCTYPE sst [<!ENTITY xxe SYSTEM \"file:///etc/passwd\">]><sst "),
       " kan inte anv\u00e4ndas: delen xl/sharedStrings.xml har en dokumenttypsdeklaration (DOCTYPE), som "
       "kan "
       "h\u00e4mta in andra filer och som en arbetsbok fr\u00e5n Excel aldrig har. Spara om arbetsboken i "
       "Excel.\n"},
  };
  for (const auto& c : cases) {
    const auto workbook = TemplateFrom(c.bytes, c.name);
    const std::string expected = "Filfel: Arbetsboken " + workbook.string() + c.message;
    auto result = cli.Run({"check", workbook.string()});
    EXPECT_EQ(result.exitCode, 1) << c.name;
    EXPECT_EQ(result.out, "") << c.name;
    EXPECT_EQ(result.err, expected) << c.name;

    const auto target = temp.Write("Lista.xlsx", "det f\u00f6rra resultatet");
    result =
        cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string()});
    EXPECT_EQ(result.exitCode, 1) << c.name;
    EXPECT_EQ(result.out, "") << c.name;
    EXPECT_EQ(result.err, expected) << c.name;
    EXPECT_EQ(base::ReadWholeFile(target), "det f\u00f6rra resultatet") << c.name;
    EXPECT_EQ(base::ReadWholeFile(workbook), c.bytes) << c.name;
  }

  // A good workbook renamed .xlsb is no binary workbook; the program refuses it as a template.
  const auto binary = TemplateFrom(good, "Mall.xlsb");
  temp.Write("Mallb.ini", kIni);  // the pairing takes ".xls" out of the name
  const std::string refusal = "Filfel: Filen " + binary.string() +
                              " har \u00e4ndelsen .xlsb (bin\u00e4r arbetsbok), som inte kan \u00f6ppnas. "
                              "Spara den som .xlsx eller .xlsm.\n";
  auto result = cli.Run({"check", binary.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, refusal);
  const auto target = temp.path() / "Lista.xlsb";
  result = cli.Run({"generate", "--dump", kExample, "--template", binary.string(), "--out", target.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, refusal);
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(BadInputTest, CheckWarnsAboutLayoutsGenerationRunsAsTheyAre) {
  const std::string ini = std::string(kIni).replace(std::string(kIni).find("ENDROW=40"), 9, "ENDROW=9");
  const auto result = cli.Run({"check", TemplateFrom(GoodTemplateBytes(), "Mall.xlsx", ini).string()});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "Varning: Sidl\u00e4ngden \u00e4r 0 eller mindre (STARTROW 10, ENDROW 9).\n");
}

// What is wrong is said as it is: an INI file that is there but cannot be read, a template that is not
// there, and a text number that does not exist.
TEST_F(BadInputTest, WrongInputIsToldAsWhatIsWrong) {
  {
    TempDir folder;
    CliRunner runner{folder.path()};
    const auto workbook = folder.Write("Mall.xlsx", GoodTemplateBytes());
    std::filesystem::create_directory(folder.path() / "Mall.ini");
    const auto result = runner.Run({"check", workbook.string()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(
        Contains(result.err, "g\u00e5r inte att l\u00e4sa eftersom det inte \u00e4r n\u00e5gon vanlig fil."),
        "");
    EXPECT_EQ(result.err.find("saknar sektionen"), std::string::npos) << result.err;
  }
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

TEST_F(BadInputTest, IniWithoutReadPermissionIsToldAsSuch) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
  const auto workbook = TemplateFrom(GoodTemplateBytes());
  std::filesystem::permissions(temp.path() / "Mall.ini", std::filesystem::perms::none);
  const auto result = cli.Run({"check", workbook.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err, "g\u00e5r inte att l\u00e4sa eftersom beh\u00f6righet saknas."), "");
}

// The dump itself, saved under a workbook's name, is never the target; a write-protected target is
// replaced only when the user says yes.
TEST_F(BadInputTest, TargetThatIsTheDumpOrWriteProtectedIsNotReplacedUnasked) {
  const auto workbook = TemplateFrom(GoodTemplateBytes());
  const std::string dumpBytes = *base::ReadWholeFile(kExample);
  const auto dump = temp.Write("Rapport.xlsx", dumpBytes);
  auto result = cli.Run({"generate", "--dump", dump.string(), "--template", workbook.string(), "--out",
                         (temp.path() / "." / "Rapport.xlsx").string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err, "Fel: Filen " + (temp.path() / "." / "Rapport.xlsx").string() +
                                     " \u00e4r sj\u00e4lva rapportfilen och kan inte skrivas \u00f6ver.\n"),
            "");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(base::ReadWholeFile(dump), dumpBytes);

  const auto target = temp.Write("Skyddad.xlsx", "det f\u00f6rra resultatet");
  std::filesystem::permissions(target, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::group_read |
                                           std::filesystem::perms::others_read);
  result =
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

bool WorkbookHolds(const std::filesystem::path& workbook, const std::string& text) {
  for (const auto& entry : excel::ReadZipArchive(*base::ReadWholeFile(workbook), {})) {
    if (entry.bytes.find(text) != std::string::npos) return true;
  }
  return false;
}

// A cell holds 32767 characters: longer texts are cut to that, and the run says once how many were.
TEST_F(BadInputTest, TextsLongerThanACellHoldsAreCutAndCounted) {
  const auto workbook = TemplateFrom(GoodTemplateBytes());
  std::string dumpBytes = *base::ReadWholeFile(kExample);
  for (int i = 0; i < 2; ++i)
    dumpBytes.replace(dumpBytes.find("\tW101\t"), 6, "\t" + std::string(40000, 'q') + "\t");
  const auto dump = temp.Write("lang.txt", dumpBytes);
  const auto target = temp.path() / "Lista.xlsx";
  const auto result = cli.Run(
      {"generate", "--dump", dump.string(), "--template", workbook.string(), "--out", target.string()});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(
      result.err,
      "Sheetwright: 2 celler hade l\u00e4ngre text \u00e4n en cell rymmer (32767 tecken) och har kortats "
      "till det.\n");
  EXPECT_TRUE(WorkbookHolds(target, std::string(32767, 'q')));
  EXPECT_FALSE(WorkbookHolds(target, std::string(32768, 'q')));
}

// A page whose rows all lie above row 1 writes nothing of the report: generation refuses it before the
// target is touched, and the check says it cannot run.
TEST_F(BadInputTest, PageAboveTheSheetIsRefused) {
  const std::string ini = std::string(kIni).replace(std::string(kIni).find("STARTROW=10\r\nENDROW=40"), 22,
                                                    "STARTROW=-5\r\nENDROW=-1");
  const auto workbook = TemplateFrom(GoodTemplateBytes(), "Mall.xlsx", ini);
  const auto target = temp.Write("Lista.xlsx", "det f\u00f6rra resultatet");
  auto result =
      cli.Run({"generate", "--dump", kExample, "--template", workbook.string(), "--out", target.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err,
                     "Fel: Sidans rader ligger ovanf\u00f6r rad 1 (STARTROW -5, ENDROW -1), s\u00e5 "
                     "ingen rad ur rapporten skulle skrivas.\nRedigera ini-filen "),
            "");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(base::ReadWholeFile(target), "det f\u00f6rra resultatet");

  result = cli.Run({"check", workbook.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Contains(result.err, "Fel: Sidans rader ligger ovanf\u00f6r rad 1"), "");
}

}  // namespace
}  // namespace sw::testing
