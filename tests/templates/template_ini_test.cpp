#include "templates/template_ini.h"

#include "base/windows_path.h"

#include <gtest/gtest.h>

#include <filesystem>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "base/text_codec.h"
#include "temp_dir.h"
#include "templates/template_ini_cache.h"

namespace sw::templates {
namespace {

using base::MessageIcon;

class TemplateIniTest : public ::testing::Test {
 protected:
  // Writes an INI file in Windows-1252, as Notepad saves it, and returns its path the way the program
  // joins it.
  std::string WriteIni(std::string_view text, std::string_view name = "Mall.ini") {
    dir_.Write(name, base::EncodeWindows1252(text));
    return Folder() + "\\" + std::string(name);
  }
  std::string Folder() const { return dir_.path().string(); }

  testing::TempDir dir_;
  TemplateDefinition definition_;
};

std::vector<std::string> Texts(const std::vector<base::Notice>& notices) {
  std::vector<std::string> texts;
  for (const auto& notice : notices) texts.push_back(notice.text);
  return texts;
}

constexpr const char* kCompleteSheet =
    "[Tabs]\nTemplate=Sida\nCommon=Gemensamt\n"
    "[Sheet]\nSHEETNO=H2\nNEXTSHEET=H3\nLOCATION=B5\nSTARTROW=10\nENDROW=40\nCOLUMNS=A,B,!,D\n";

TEST_F(TemplateIniTest, CommonFieldsAndColumnNames) {
  const auto reading = ReadCommonFields(testing::DataFile("templates_ini/complete.ini").string());
  ASSERT_TRUE(reading.outcome);
  EXPECT_TRUE(reading.outcome.notices.empty());
  ASSERT_EQ(reading.fields.size(), 3u);
  ASSERT_TRUE(reading.fields[1]);
  EXPECT_EQ(reading.fields[0]->Label, "Projekt");
  EXPECT_EQ(reading.fields[1]->Label, "Datum");
  EXPECT_EQ(reading.fields[1]->DefaultText, ".");
  EXPECT_EQ(reading.fields[1]->Row, 2);
  EXPECT_EQ(reading.fields[1]->Col, 2);
  EXPECT_EQ(reading.fields[2]->Label, "Ritad av");
  EXPECT_EQ(reading.fields[2]->DefaultText, "AB");
  EXPECT_EQ(reading.columnNames, (std::vector<std::string>{"A", "B", "!", "D"}));

  // The default text is all that follows the first "|"; no Columns, no names.
  const auto bars = ReadCommonFields(WriteIni("[Common]\nPipe=C7|a|b\nTom=D2|\n"));
  EXPECT_EQ(bars.fields[0]->DefaultText, "a|b");
  EXPECT_EQ(bars.fields[0]->Row, 7);
  EXPECT_EQ(bars.fields[0]->Col, 3);
  EXPECT_EQ(bars.fields[1]->DefaultText, "");
  EXPECT_FALSE(bars.columnNames);
}

TEST_F(TemplateIniTest, BadCommonLinesAreToldAndSkippedButKeepTheirIndex) {
  std::string common = "[Common]\nProjekt=3C\n \nDatum=B2|.\nUtan likhetstecken\n";
  for (int i = 0; i < 30; ++i) common += "F" + std::to_string(i) + "=A1\n";
  const auto reading = ReadCommonFields(WriteIni(common));
  ASSERT_TRUE(reading.outcome);

  const auto& notices = reading.outcome.notices;
  ASSERT_EQ(notices.size(), 2u);
  EXPECT_EQ(notices[0], (base::Notice{"Rad i INI-fil felaktig. \r'Projekt=3C'\rFelaktig cell-angivelse.", "",
                                      MessageIcon::kCritical}));
  EXPECT_EQ(notices[1].text, "Rad i INI-fil felaktig. \r'Utan likhetstecken'\rFelaktig cell-angivelse.");

  ASSERT_EQ(reading.fields.size(), 30u);  // one box per line, as far as the boxes go
  // Windows never returns the blank line, so it takes no index.
  EXPECT_FALSE(reading.fields[0]);
  EXPECT_EQ(reading.fields[1]->Label, "Datum");
  EXPECT_FALSE(reading.fields[2]);
  EXPECT_EQ(reading.fields[29]->Label, "F26");
}

// An INI file that is there but cannot be read is told as such, not as one that lacks the section.
TEST_F(TemplateIniTest, MissingCommonSectionOrAFolderForTheFile) {
  const auto expectTold = [](const std::string& ini, const std::string& says) {
    const auto reading = ReadCommonFields(ini);
    EXPECT_EQ(reading.outcome.status, CommonFieldsStatus::kMissingSection);
    EXPECT_EQ(reading.outcome.notices,
              (std::vector<base::Notice>{{"Ini-filen " + base::DisplayPath(ini) + "\r" + says,
                                          "Kan ej använda Excel-filen", MessageIcon::kInformation}}));
    EXPECT_TRUE(reading.fields.empty());
  };
  expectTold(WriteIni(kCompleteSheet), "saknar sektionen [Common].");
  std::filesystem::create_directory(dir_.path() / "Mapp.ini");
  expectTold(Folder() + "\\Mapp.ini", "går inte att läsa eftersom det inte är någon vanlig fil.");
}

#ifndef _WIN32
class PosixOnlyTemplateIniTest : public TemplateIniTest {};

TEST_F(PosixOnlyTemplateIniTest, IniWithoutReadPermissionIsToldAsSuch) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
  const auto locked = WriteIni(kCompleteSheet, "Last.ini");
  std::filesystem::permissions(dir_.path() / "Last.ini", std::filesystem::perms::none);
  EXPECT_EQ(Texts(ReadCommonFields(locked).outcome.notices),
            std::vector<std::string>{"Ini-filen " + base::DisplayPath(locked) +
                                     "\rgår inte att läsa eftersom behörighet saknas."});
}
#endif

TEST_F(TemplateIniTest, RowsPerPageForThePreview) {
  struct Case {
    const char* sheet;
    int rows;
    std::vector<std::string> messages;
    bool infinite;
  };
  for (const auto& c : std::vector<Case>{
           {"STARTROW=10\nENDROW=40\n", 31, {}, false},
           {"STARTROW=10\nENDROW=40\nINFINITE=1\n", 65000 - 10 + 1, {}, true},
           {"STARTROW=10\nENDROW=40\nINFINITE=0\n", 31, {}, true},
           {"STARTROW=10\nENDROW=40\nENDROW=20\n", 31, {}, false},    // the first ENDROW
           {"STARTROW=5\nSTARTROW=10\nENDROW=40\n", 31, {}, false},   // the last STARTROW
           {"STARTROW\nstartrow=10=99\nEndRow=40\n", 31, {}, false},  // no "=": ignored; past a 2nd "="
           {"STARTROW=40\nENDROW=10\n", -29, {}, false},
           {"STARTROW=10\n", -1, {}, false},
           {"STARTROW=x\nENDROW=40\n",
            -1,
            {"Startrad för ifyllnad av sida är felaktigt angiven i ini-filen.\r\"STARTROW=x\""},
            false},
           {"STARTROW=1\nENDROW=4 0\nINFINITE=ja\n",
            -1,
            {"Radantal per sida är felaktigt angiven i ini-filen.\r\"ENDROW=4 0\"",
             "Dynamisk sidlängd felaktigt angiven i ini-filen.\r\"INFINITE=ja\""},
            false},
       }) {
    const auto reading = ReadRowsPerPage(WriteIni(std::string("[Sheet]\n") + c.sheet));
    EXPECT_TRUE(reading.outcome) << c.sheet;
    EXPECT_EQ(reading.rowsPerPage, c.rows) << c.sheet;
    EXPECT_EQ(Texts(reading.outcome.notices), c.messages) << c.sheet;
    EXPECT_EQ(reading.infinite, c.infinite) << c.sheet;
    for (const auto& notice : reading.outcome.notices) EXPECT_EQ(notice.title, "Fel");
  }

  const auto ini = WriteIni("[Common]\nA=A1\n");
  const auto reading = ReadRowsPerPage(ini);
  EXPECT_FALSE(reading.outcome);
  EXPECT_EQ(reading.rowsPerPage, -1);
  EXPECT_EQ(Texts(reading.outcome.notices),
            std::vector<std::string>{"Ini-filen " + base::DisplayPath(ini) + "\rsaknar sektionen [Sheet]."});
}

TEST_F(TemplateIniTest, ValidationCountsAcceptedLines) {
  struct Case {
    std::string ini;
    bool accepted;
    int count;
    std::vector<std::string> messages;  // before the final "Redigera" message
  };
  const std::string tabs = "[Tabs]\nTemplate=Sida\nCommon=Gemensamt\n";
  const std::string cells = "SHEETNO=H2\nNEXTSHEET=H3\nLOCATION=B5\n";
  for (const auto& c : std::vector<Case>{
           {kCompleteSheet, true, 8, {}},
           {tabs + "[Sheet]\nSHEETNO=H2\nNEXTSHEET=H3\nSTARTROW=10\nSTARTROW=11\nENDROW=40\nCOLUMNS=A\n",
            true,
            8,
            {}},
           {tabs + "[Sheet]\n" + cells + "STARTROW=10\nENDROW=40\nCOLUMNS=A,1,C\n",
            true,
            8,
            {"Kolumnnamn för dataifyllnad är felaktigt angiven i ini-filen.\r\"COLUMNS=A,1,C\""}},
           {tabs + "[Sheet]\n" + cells + "STARTROW\nENDROW=40\nCOLUMNS=A\n",
            false,
            7,
            {"Felaktig rad i ini-filen. =-tecken saknas eller är felaktigt använt.\r\"STARTROW\""}},
           {tabs + "[Sheet]\n" + cells + "STARTROW=10=1\nENDROW=40\nCOLUMNS=A\n",
            false,
            7,
            {"Felaktig rad i ini-filen. =-tecken saknas eller är felaktigt använt.\r\"STARTROW=10=1\""}},
           {tabs + "[Sheet]\nSHEETNO=2H\nNEXTSHEET=!3\nLOCATION=\nSTARTROW=10\nENDROW=40\nCOLUMNS="
                   "A\nINFINITE=1\n",
            false,
            5,
            {"Cellposition för bladnummer är felaktigt angiven i ini-filen.\r\"SHEETNO=2H\"",
             "Cellposition för fortsättningsblad är felaktigt angiven i ini-filen.\r\"NEXTSHEET=!3\"",
             "Cellposition för placering är felaktigt angiven i ini-filen.\r\"LOCATION=\""}},
           {"[Sheet]\n" + cells + "STARTROW=10\nENDROW=40\nCOLUMNS=A\n",
            false,
            6,
            {"Namn på flik för gemensamma texter 'Common=' är ej angiven i ini-filens sektion '[Tabs]'.\r"
             "Namn på flik för sidmall 'Template=' är ej angiven i ini-filens sektion '[Tabs]'."}},
       }) {
    const auto ini = WriteIni(c.ini);
    const auto result = ValidateTemplateIni(ini);
    EXPECT_EQ(result.Accepted(), c.accepted) << c.ini;
    EXPECT_EQ(result.count, c.count) << c.ini;
    result.ApplyTo(definition_);
    EXPECT_EQ(definition_.IniError, !c.accepted) << c.ini;
    auto expected = c.messages;
    if (!c.accepted) expected.push_back("Redigera ini-filen " + base::DisplayPath(ini) + " och försök senare.");
    EXPECT_EQ(Texts(result.outcome.notices), expected) << c.ini;
    for (const auto& message : result.outcome.notices) {
      const bool syntax = message.text.starts_with("Felaktig rad");
      EXPECT_EQ(message.title, syntax ? "INI-fel" : "Fel");
      EXPECT_EQ(message.icon, syntax ? MessageIcon::kNone : MessageIcon::kInformation);
    }
  }
}

TEST_F(TemplateIniTest, ValidationFillsTheDefinition) {
  const auto complete = ValidateTemplateIni(WriteIni(kCompleteSheet));
  ASSERT_TRUE(complete.Accepted());
  complete.ApplyTo(definition_);
  EXPECT_EQ(definition_.TemplateSheetName, "Sida");
  EXPECT_EQ(definition_.CommonSheetName, "Gemensamt");
  EXPECT_EQ(definition_.SheetNoRow, 2);
  EXPECT_EQ(definition_.SheetNoCol, 8);
  EXPECT_EQ(definition_.LocationCol, 2);
  EXPECT_EQ(definition_.StartRow, 10);
  EXPECT_EQ(definition_.EndRow, 40);
  EXPECT_FALSE(definition_.Infinite);
  EXPECT_EQ(definition_.DataColumns, (std::vector<std::int16_t>{1, 2, kFieldNotWritten, 4}));

  // Generation takes the last ENDROW and 9999 for a dynamic page; a rejected item ends the columns.
  ValidateTemplateIni(WriteIni(std::string(kCompleteSheet) + "ENDROW=50\nINFINITE=1\nCOLUMNS=C,1,E\n"))
      .ApplyTo(definition_);
  EXPECT_EQ(definition_.EndRow, 9999);
  EXPECT_TRUE(definition_.Infinite);
  EXPECT_EQ(definition_.DataColumns, (std::vector<std::int16_t>{3}));
  ValidateTemplateIni(WriteIni(std::string(kCompleteSheet) + "ENDROW=50\nINFINITE=0\n")).ApplyTo(definition_);
  EXPECT_EQ(definition_.EndRow, 50);
  EXPECT_TRUE(definition_.Infinite);

  // A missing [Sheet] leaves the definition as it was.
  const auto ini = WriteIni("[Tabs]\nTemplate=Sida\n");
  const auto result = ValidateTemplateIni(ini);
  EXPECT_EQ(result.outcome.status, IniValidationStatus::kMissingSheetSection);
  EXPECT_EQ(result.outcome.notices,
            (std::vector<base::Notice>{{"Ini-filen " + base::DisplayPath(ini) + "\rsaknar sektionen [Sheet].",
                                        "Kan ej använda Excel-filen", MessageIcon::kInformation}}));
  result.ApplyTo(definition_);
  EXPECT_EQ(definition_.EndRow, 50);
  EXPECT_EQ(definition_.TemplateSheetName, "Sida");
}

TEST_F(TemplateIniTest, PairingWalksEveryFileInNameOrder) {
  struct Case {
    std::vector<const char*> files;
    const char* workbook;
    const char* paired;  // "" when none pairs
  };
  for (const auto& c : std::vector<Case>{
           {{"report.ini", "REPORT.XLSM", "Plan.xlsx"}, "REPORT.XLSM", "report.ini"},  // ignoring case
           {{"plan", "PLAN.ini"}, "Plan.xlsx", "plan"},  // no extension, and first in name order
           {{"Plan.INI.ini", "Plan.txt"}, "Plan.xls", "Plan.INI.ini"},
           {{"Plan.ini.txt", "Plan.xlsx"}, "Plan.xlsx", ""},
           {{"Plan.XLS.ini"}, "Plan.XLS.xlsx", ""},  // every ".XLS" goes from the workbook's name
           {{".ini", "x.ini"}, "", ".ini"},          // the name of no template pairs with a bare ".ini"
       }) {
    testing::TempDir dir;
    for (const char* name : c.files) dir.Write(name, "[Common]\nProjekt=C3\n");
    const std::string folder = dir.path().string();
    const auto pairing = FindIniForTemplate(folder, c.workbook);
    EXPECT_EQ(static_cast<bool>(pairing.outcome), *c.paired != 0) << c.workbook;
    EXPECT_EQ(pairing.iniPath, *c.paired ? folder + "\\" + c.paired : "") << c.workbook;
    const base::Notice unpaired{"Excel-rapportmallen saknar nödvändig tillhörande INI-fil", "Fel",
                                MessageIcon::kInformation};
    EXPECT_EQ(pairing.outcome.notices, *c.paired ? std::vector<base::Notice>() : std::vector{unpaired})
        << c.workbook;
  }
}

TEST_F(TemplateIniTest, OneReadingDescribesTheFileUntilItChanges) {
  const auto ini = WriteIni(std::string("[Common]\nProjekt=C3\n") + kCompleteSheet);
  TemplateIniCache cache;
  for (int i = 0; i < 5; ++i) {
    const auto& description = cache.Get(ini);
    EXPECT_EQ(description.pageLength.rowsPerPage, 31);
    EXPECT_TRUE(description.validation.Accepted());
    EXPECT_EQ(description.common.fields.size(), 1u);
  }
  EXPECT_EQ(cache.Reads(), 1);

  // Edited: longer, and written later.
  WriteIni(std::string("[Common]\nProjekt=C3\n") + kCompleteSheet + "ENDROW=50\n");
  std::filesystem::last_write_time(dir_.path() / "Mall.ini",
                                   std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
  EXPECT_EQ(cache.Get(ini).validation.layout.EndRow, 50);
  EXPECT_EQ(cache.Reads(), 2);

  // A file that is not there is looked for every time.
  cache.Get(Folder() + "\\Saknas.ini");
  cache.Get(Folder() + "\\Saknas.ini");
  EXPECT_EQ(cache.Reads(), 4);
}

}  // namespace
}  // namespace sw::templates
