#include "templates/template_ini.h"

#include <gtest/gtest.h>

#include "base/system_colours.h"
#include "base/text_codec.h"
#include "scripted_dialogs.h"
#include "temp_dir.h"

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
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const auto& message : dialogs_.messages) texts.push_back(message.text);
    return texts;
  }

  testing::TempDir dir_;
  testing::ScriptedDialogs dialogs_;
  TemplateDefinition definition_;
  FieldPanel fields_;
  report::ReportTable preview_;
  ShortDateSource today_ = [] { return std::string("2024-05-01"); };
};

constexpr const char* kCompleteSheet =
    "[Tabs]\nTemplate=Sida\nCommon=Gemensamt\n"
    "[Sheet]\nSHEETNO=H2\nNEXTSHEET=H3\nLOCATION=B5\nSTARTROW=10\nENDROW=40\nCOLUMNS=A,B,!,D\n";

TEST_F(TemplateIniTest, CommonFieldsFillRecordsPanelAndPreviewHeadings) {
  const std::string ini = testing::DataFile("templates_ini/complete.ini").string();
  ASSERT_TRUE(ReadCommonFields(ini, definition_, fields_, preview_, dialogs_, today_));
  EXPECT_TRUE(dialogs_.messages.empty());

  ASSERT_EQ(definition_.CommonFields.size(), 3u);
  EXPECT_EQ(definition_.CommonFields[1].Label, "Datum");
  EXPECT_EQ(definition_.CommonFields[1].DefaultText, ".");
  EXPECT_EQ(definition_.CommonFields[1].Row, 2);
  EXPECT_EQ(definition_.CommonFields[1].Col, 2);
  EXPECT_EQ(definition_.CommonFields[2].Label, "Ritad av");
  EXPECT_EQ(fields_.entries[0].caption, "Projekt");
  EXPECT_EQ(fields_.entries[0].text, "");
  EXPECT_EQ(fields_.entries[1].text, "2024-05-01");
  EXPECT_EQ(fields_.entries[2].text, "AB");
  for (int i = 0; i < kFieldCount; ++i) EXPECT_EQ(fields_.entries[i].enabled, i < 3) << i;
  EXPECT_EQ(fields_.entries[0].backColour, base::kSystemWindowBackground);

  ASSERT_EQ(preview_.Cols(), 5);
  EXPECT_EQ(preview_.Text(0, 0), "");
  EXPECT_EQ(preview_.Text(0, 1), "A ");
  EXPECT_EQ(preview_.Text(0, 3), "! ");
  EXPECT_EQ(preview_.Text(0, 4), "D ");
  EXPECT_EQ(definition_.PreviewColumnNames, (std::vector<std::string>{"A", "B", "!", "D"}));
}

TEST_F(TemplateIniTest, DefaultTextIsAllThatFollowsTheFirstBar) {
  const auto ini = WriteIni("[Common]\nPipe=C7|a|b\nTom=D2|\nDatum=B2|.|x\n");
  ASSERT_TRUE(ReadCommonFields(ini, definition_, fields_, preview_, dialogs_, today_));
  EXPECT_TRUE(dialogs_.messages.empty());
  ASSERT_EQ(definition_.CommonFields.size(), 3u);
  EXPECT_EQ(definition_.CommonFields[0].DefaultText, "a|b");
  EXPECT_EQ(definition_.CommonFields[0].Row, 7);
  EXPECT_EQ(definition_.CommonFields[0].Col, 3);
  EXPECT_EQ(fields_.entries[0].text, "a|b");
  EXPECT_EQ(fields_.entries[1].text, "");
  // Only a lone "." is today's date.
  EXPECT_EQ(fields_.entries[2].text, ".|x");
}

TEST_F(TemplateIniTest, BadCommonLinesAreToldAndSkippedButKeepTheirIndex) {
  std::string common = "[Common]\nProjekt=3C\n \nDatum=B2|.\nUtan likhetstecken\n";
  for (int i = 0; i < 30; ++i) common += "F" + std::to_string(i) + "=A1\n";
  const auto ini = WriteIni(common);
  ASSERT_TRUE(ReadCommonFields(ini, definition_, fields_, preview_, dialogs_, today_));

  ASSERT_EQ(dialogs_.messages.size(), 2u);
  EXPECT_EQ(dialogs_.messages[0].text, "Rad i INI-fil felaktig. \r'Projekt=3C'\rFelaktig cell-angivelse.");
  EXPECT_EQ(dialogs_.messages[0].icon, MessageIcon::kCritical);
  EXPECT_EQ(base::EffectiveTitle(dialogs_.messages[0]), "Sheetwright");
  EXPECT_EQ(dialogs_.messages[1].text,
            "Rad i INI-fil felaktig. \r'Utan likhetstecken'\rFelaktig cell-angivelse.");

  ASSERT_EQ(definition_.CommonFields.size(), 30u);  // one box per line, as far as the boxes go
  // Windows never returns the blank line, so it takes no index.
  EXPECT_FALSE(fields_.entries[0].enabled);
  EXPECT_EQ(fields_.entries[1].caption, "Datum");
  EXPECT_FALSE(fields_.entries[2].enabled);
  EXPECT_EQ(fields_.entries[29].caption, "F26");
}

TEST_F(TemplateIniTest, MissingCommonSectionSetsIniError) {
  const auto ini = WriteIni(kCompleteSheet);
  EXPECT_FALSE(ReadCommonFields(ini, definition_, fields_, preview_, dialogs_, today_));
  ASSERT_EQ(dialogs_.messages.size(), 1u);
  EXPECT_EQ(dialogs_.messages[0].text, "Ini-filen " + ini + "\rsaknar sektionen [Common].");
  EXPECT_EQ(dialogs_.messages[0].title, "Kan ej använda Excel-filen");
  EXPECT_EQ(dialogs_.messages[0].icon, MessageIcon::kInformation);
  EXPECT_TRUE(definition_.IniError);
}

TEST_F(TemplateIniTest, PreviewHeadingsNeedAtLeastTwoColumnNames) {
  preview_.SetCols(3);
  preview_.SetText(0, 1, "old");
  ReadCommonFields(WriteIni("[Common]\nA=A1\n[Sheet]\nColumns=Kabel\n"), definition_, fields_, preview_,
                   dialogs_, today_);
  EXPECT_EQ(preview_.Cols(), 3);
  EXPECT_EQ(preview_.Text(0, 1), "");

  ReadCommonFields(WriteIni("[Common]\nA=A1\n[Sheet]\nColumns=Kabel,Från\n"), definition_, fields_, preview_,
                   dialogs_, today_);
  EXPECT_EQ(preview_.Cols(), 3);
  EXPECT_EQ(preview_.Text(0, 2), "Från ");
}

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
    dialogs_.messages.clear();
    definition_.Infinite = false;
    const auto ini = WriteIni(std::string("[Sheet]\n") + c.sheet);
    EXPECT_EQ(ReadRowsPerPage(ini, definition_, dialogs_), c.rows) << c.sheet;
    EXPECT_EQ(Texts(), c.messages) << c.sheet;
    EXPECT_EQ(definition_.Infinite, c.infinite) << c.sheet;
    for (const auto& message : dialogs_.messages) EXPECT_EQ(message.title, "Fel");
  }

  dialogs_.messages.clear();
  const auto ini = WriteIni("[Common]\nA=A1\n");
  EXPECT_EQ(ReadRowsPerPage(ini, definition_, dialogs_), -1);
  EXPECT_EQ(Texts(), std::vector<std::string>{"Ini-filen " + ini + "\rsaknar sektionen [Sheet]."});
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
    dialogs_.messages.clear();
    const auto ini = WriteIni(c.ini);
    const auto result = ValidateTemplateIni(ini, definition_, dialogs_);
    EXPECT_EQ(result.Accepted(), c.accepted) << c.ini;
    EXPECT_EQ(result.count, c.count) << c.ini;
    EXPECT_EQ(definition_.IniError, !c.accepted) << c.ini;
    auto expected = c.messages;
    if (!c.accepted) expected.push_back("Redigera ini-filen " + ini + " och försök senare.");
    EXPECT_EQ(Texts(), expected) << c.ini;
    for (const auto& message : dialogs_.messages) {
      const bool syntax = message.text.starts_with("Felaktig rad");
      EXPECT_EQ(message.title, syntax ? "INI-fel" : "Fel");
      EXPECT_EQ(message.icon, syntax ? MessageIcon::kNone : MessageIcon::kInformation);
    }
  }
}

TEST_F(TemplateIniTest, ValidationFillsTheDefinition) {
  ASSERT_TRUE(ValidateTemplateIni(WriteIni(kCompleteSheet), definition_, dialogs_).Accepted());
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
  ValidateTemplateIni(WriteIni(std::string(kCompleteSheet) + "ENDROW=50\nINFINITE=1\nCOLUMNS=C,1,E\n"),
                      definition_, dialogs_);
  EXPECT_EQ(definition_.EndRow, 9999);
  EXPECT_TRUE(definition_.Infinite);
  EXPECT_EQ(definition_.DataColumns, (std::vector<std::int16_t>{3}));
  ValidateTemplateIni(WriteIni(std::string(kCompleteSheet) + "ENDROW=50\nINFINITE=0\n"), definition_,
                      dialogs_);
  EXPECT_EQ(definition_.EndRow, 50);
  EXPECT_TRUE(definition_.Infinite);

  dialogs_.messages.clear();
  const auto ini = WriteIni("[Tabs]\nTemplate=Sida\n");
  const auto result = ValidateTemplateIni(ini, definition_, dialogs_);
  EXPECT_EQ(result.status, IniValidationStatus::kMissingSheetSection);
  EXPECT_EQ(Texts(), std::vector<std::string>{"Ini-filen " + ini + "\rsaknar sektionen [Sheet]."});
  EXPECT_EQ(dialogs_.messages[0].title, "Kan ej använda Excel-filen");
}

TEST_F(TemplateIniTest, WorkbookPairsWithItsIniIgnoringCase) {
  WriteIni("[Common]\nProjekt=C3|P1\n", "report.ini");
  dir_.Write("REPORT.XLSM", "");
  dir_.Write("Plan.xlsx", "");
  fields_.entries[5].caption = "kvar från förra mallen";
  ASSERT_TRUE(FindIniForTemplate(Folder(), "REPORT.XLSM", definition_, fields_, preview_, dialogs_, today_));
  EXPECT_EQ(definition_.IniPath, Folder() + "\\report.ini");
  EXPECT_EQ(fields_.entries[0].text, "P1");
  EXPECT_EQ(fields_.entries[5].caption, "");
  EXPECT_TRUE(dialogs_.messages.empty());

  EXPECT_FALSE(FindIniForTemplate(Folder(), "Plan.xlsx", definition_, fields_, preview_, dialogs_, today_));
  EXPECT_EQ(definition_.IniPath, "");
  EXPECT_FALSE(fields_.entries[0].enabled);
  ASSERT_EQ(dialogs_.messages.size(), 1u);
  EXPECT_EQ(dialogs_.messages[0].text, "Excel-rapportmallen saknar nödvändig tillhörande INI-fil");
  EXPECT_EQ(dialogs_.messages[0].title, "Fel");
  EXPECT_EQ(dialogs_.messages[0].icon, MessageIcon::kInformation);
}

TEST_F(TemplateIniTest, PairingWalksEveryFileInNameOrder) {
  struct Case {
    std::vector<const char*> files;
    const char* workbook;
    const char* paired;  // "" when none pairs
  };
  for (const auto& c : std::vector<Case>{
           {{"plan", "PLAN.ini"}, "Plan.xlsx", "plan"},  // no extension, and first in name order
           {{"Plan.INI.ini", "Plan.txt"}, "Plan.xls", "Plan.INI.ini"},
           {{"Plan.ini.txt", "Plan.xlsx"}, "Plan.xlsx", ""},
           {{"Plan.XLS.ini"}, "Plan.XLS.xlsx", ""},  // every ".XLS" goes from the workbook's name
           {{".ini", "x.ini"}, "", ".ini"},          // the name of no template pairs with a bare ".ini"
       }) {
    testing::TempDir dir;
    for (const char* name : c.files) dir.Write(name, "[Common]\nProjekt=C3\n");
    definition_.IniPath = "kvar";
    const std::string folder = dir.path().string();
    EXPECT_EQ(FindIniForTemplate(folder, c.workbook, definition_, fields_, preview_, dialogs_, today_),
              *c.paired != 0)
        << c.workbook;
    EXPECT_EQ(definition_.IniPath, *c.paired ? folder + "\\" + c.paired : "") << c.workbook;
  }
}

}  // namespace
}  // namespace sw::templates
