#include "session/session.h"

#include <gtest/gtest.h>

#include "base/file_io.h"
#include "fake_installation.h"
#include "recording_launcher.h"
#include "temp_dir.h"

namespace sw::session {
namespace {

using List = std::vector<std::string>;

const std::string kTempDump = "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt";
const std::string kRegistryDump = "C:\\VOLTARIS\\Rapport\\volt_report.txt";

// Counts the dump loads that got as far as reading.
class CountingProgress final : public report::LoadProgress {
 public:
  int loads = 0;
  void Begin(int) override { ++loads; }
  void Step(int) override {}
  void End() override {}
};

class SessionTest : public ::testing::Test {
 protected:
  explicit SessionTest(bool withCadFiles = true)
      : install_(withCadFiles),
        log_(logEnvironment_, install_.temp.path()),
        session_({.registry = install_.registry,
                  .settings = install_.settings,
                  .environment = install_.environment,
                  .dialogs = install_.dialogs,
                  .launcher = launcher_,
                  .startLog = &log_,
                  .progress = &progress_,
                  .layoutColumns = {}}) {}

  // A later start of the program over the same installation and settings.
  SessionServices NextStart() {
    return {.registry = install_.registry,
            .settings = install_.settings,
            .environment = install_.environment,
            .dialogs = install_.dialogs,
            .launcher = launcher_};
  }

  // The message column of the start log.
  List LogMessages() const {
    List messages;
    const auto text = base::ReadWholeFile(log_.FilePath()).value_or("");
    for (std::size_t start = 0; start < text.size();) {
      const auto end = text.find("\r\n", start);
      const auto line = text.substr(start, end - start);
      messages.push_back(line.substr(line.find('\t') + 1));
      start = end + 2;
    }
    return messages;
  }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  testing::FakeEnvironment logEnvironment_{{std::string(settings::kStartLogVariable), "1"}};
  settings::StartLog log_;
  CountingProgress progress_;
  Session session_;
};

TEST_F(SessionTest, StartUpOverTheInstallation) {
  List steps;
  session_.Start([&] { steps.push_back("window"); });

  EXPECT_EQ(session_.CurrentReportId(), "PANEL");
  EXPECT_EQ(session_.SheetNumbers().text, "7");
  EXPECT_FALSE(session_.IncludeEmptyRows());
  EXPECT_TRUE(session_.UseSlashTwo());
  EXPECT_FALSE(session_.SingleSheet());

  EXPECT_EQ(session_.TemplateDirectories().text, "C:\\Projektmallar\\");
  EXPECT_EQ(session_.Templates().items, (List{"Oversikt.xls", "PANEL.xlsx"}));
  EXPECT_EQ(session_.Templates().text, "PANEL.xlsx");
  EXPECT_EQ(session_.Definition().IniPath, "C:\\Projektmallar\\\\PANEL.ini");
  EXPECT_EQ(session_.Fields().entries[1].caption, "Ritad av");
  EXPECT_EQ(session_.Fields().entries[1].text, "AB");

  // The last dump listed is chosen, remembered and loaded.
  EXPECT_EQ(session_.ReportDumps().text, kTempDump);
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), kTempDump);
  EXPECT_EQ(progress_.loads, 1);
  ASSERT_EQ(session_.Table().Rows(), 7);
  EXPECT_EQ(session_.Table().Text(1, 0), "+A1 Panel");
  EXPECT_EQ(session_.Table().Text(3, 3), "Fl\xc3\xa4kt");
  EXPECT_TRUE(session_.SingleSheetEnabled());
  EXPECT_TRUE(install_.dialogs.messages.empty());

  EXPECT_EQ(steps, List{"window"});
  // The start's own lines around the eight the file discovery writes.
  const List log = LogMessages();
  ASSERT_EQ(log.size(), 13u);
  EXPECT_EQ(List(log.begin(), log.begin() + 5),
            (List{"Fetching data from VOLTARIS.INI", "VOLTARIS.INI successfully processed.", "Restore Mainform",
                  "Refreshing files", "RefreshFiles:Fetching RDS-dirs from registry"}));
  EXPECT_EQ(log.back(), "Mainform successfully loaded");
}

TEST_F(SessionTest, AFailedStepIsToldBeforeWhatTheChosenDumpTells) {
  install_.Write("Projekt/Kraft/kraft.cfg", "(setq X 1)\r\nRDS_DEF\r\n");  // the project step fails: 5
  install_.Write("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt", std::string("\xFE\xFF\0R", 4));
  // The directory then chosen ("\\", the misconfigured user directory's) has no template to pair.
  session_.Start();
  List told;
  for (const auto& message : install_.dialogs.messages) told.push_back(message.text);
  EXPECT_EQ(told,
            (List{"5 - Ogiltigt proceduranrop eller argument",
                  "Excel-rapportmallen saknar n\xc3\xb6"
                  "dv\xc3\xa4ndig tillh\xc3\xb6rande INI-fil",
                  "Filen " + kTempDump +
                      " \xc3\xa4r sparad som UTF-16 big-endian och kan inte l\xc3\xa4sas. Spara den som "
                      "ANSI, UTF-8 eller UTF-16 little-endian."}));
  EXPECT_EQ(install_.dialogs.messages[0].icon, base::MessageIcon::kExclamation);
}

TEST_F(SessionTest, StartWithoutLoadingFindsWhatStartChoosesAndPairsAndLoadsNothing) {
  session_.StartWithoutLoading();
  EXPECT_EQ(session_.TemplateDirectories().text, "C:\\Projektmallar\\");
  EXPECT_EQ(session_.Templates().text, "PANEL.xlsx");
  EXPECT_EQ(session_.TemplatePath(), "C:\\Projektmallar\\PANEL.xlsx");
  EXPECT_EQ(session_.ReportDumps().text, kTempDump);
  EXPECT_EQ(session_.Definition().IniPath, "");
  EXPECT_EQ(progress_.loads, 0);
  EXPECT_EQ(session_.Table().Rows(), 1);  // the heading row alone
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), "");
  EXPECT_TRUE(install_.dialogs.messages.empty());
  EXPECT_EQ(LogMessages().size(), 13u);  // the lines Start writes

  // The command line's inputs then: the dump read once, with the template paired.
  EXPECT_EQ(session_.UseTemplateAndDump(session_.TemplatePath(), session_.ReportDumps().text),
            report::PreviewResult::kLoaded);
  EXPECT_EQ(progress_.loads, 1);
  EXPECT_EQ(session_.Definition().IniPath, "C:\\Projektmallar\\PANEL.ini");
  EXPECT_EQ(session_.Table().Rows(), 7);
}

TEST_F(SessionTest, SheetNumberIsPaddedToPageNoLenAndTogglesComeFromTheSettings) {
  install_.Write("Windows/VOLTARIS.INI", "[CURREPORT]\r\nREPORT_ID=PANEL\r\nREPORT_FIRST=1\r\n");
  install_.settings.SaveAppSetting("PageNoLen", "3");
  install_.settings.SaveAppSetting("IncludeEmptyRows", "2");
  install_.settings.SaveAppSetting("UseSlashTwo", "nej");  // no number: as if missing
  session_.Start();
  EXPECT_EQ(session_.SheetNumbers().text, "001");
  EXPECT_TRUE(session_.IncludeEmptyRows());
  EXPECT_TRUE(session_.UseSlashTwo());
}

TEST_F(SessionTest, CloseSavesTheLastChoices) {
  session_.Start();
  session_.TypeTemplateDirectory("C:\\VOLTARIS\\Mallar\\");
  install_.settings.values.clear();
  session_.Close();
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), kTempDump);
  EXPECT_EQ(install_.settings.GetAppSetting("LastRdsDir", ""), "C:\\VOLTARIS\\Mallar\\");

  // Started again, the remembered choices come back.
  Session again(NextStart());
  again.Start();
  EXPECT_EQ(again.TemplateDirectories().text, "C:\\VOLTARIS\\Mallar\\");
  EXPECT_EQ(again.Templates().items, List{"Apparater.xlsx"});
  EXPECT_EQ(again.Templates().errorLabel, "Ingen mall matchar senaste rapport. (PANEL)");
  EXPECT_TRUE(again.Templates().errorLabelVisible);
  EXPECT_EQ(again.ReportDumps().text, kTempDump);
}

TEST_F(SessionTest, UnmatchedListingDropsThePreviousTemplate) {
  session_.Start();
  ASSERT_FALSE(session_.Definition().IniPath.empty());
  install_.Remove("Projektmallar/PANEL.xlsx");
  session_.TypeTemplateDirectory(session_.TemplateDirectories().text);

  EXPECT_EQ(session_.Templates().items, List{"Oversikt.xls"});
  EXPECT_EQ(session_.Templates().text, "");
  EXPECT_TRUE(session_.Templates().errorLabelVisible);
  EXPECT_EQ(session_.Definition().IniPath, "");
  EXPECT_EQ(session_.Fields().entries[1].caption, "");
  EXPECT_FALSE(session_.Fields().entries[1].enabled);
  ASSERT_EQ(install_.dialogs.messages.size(), 1u);
  EXPECT_EQ(install_.dialogs.messages[0].text, "Excel-rapportmallen saknar nödvändig tillhörande INI-fil");
}

TEST_F(SessionTest, ChosenDumpsAreLoadedStoredAndRememberedNewestFirstUpToEight) {
  session_.Start();
  EXPECT_TRUE(session_.RecentDumps().empty());  // the start's own choice is not one of the user's
  const int loads = progress_.loads;
  session_.ChooseReportDump(0);
  EXPECT_EQ(progress_.loads, loads + 1);
  EXPECT_EQ(session_.Table().Text(1, 0), "+B1 Rapport");
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), kRegistryDump);

  session_.TypeReportDump("C:\\Saknas.txt");  // not there: stored, told, but not listed
  EXPECT_EQ(install_.dialogs.messages.back().text, "Hittar ej filen C:\\Saknas.txt.");
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), "C:\\Saknas.txt");
  session_.TypeReportDump(kTempDump);
  EXPECT_EQ(session_.RecentDumps(), (List{kTempDump, kRegistryDump}));

  session_.OpenRecentDump(1);
  EXPECT_EQ(session_.ReportDumps().text, kRegistryDump);
  EXPECT_EQ(session_.Table().Text(1, 0), "+B1 Rapport");
  EXPECT_EQ(session_.RecentDumps(), (List{kRegistryDump, kTempDump}));

  List chosen;
  for (int i = 0; i < 9; ++i) {
    install_.Write("Dumpar/d" + std::to_string(i) + ".txt", "%+X1 Panel%\r\n\tX1\t1\tPump\r\n");
    chosen.insert(chosen.begin(), "C:\\Dumpar\\d" + std::to_string(i) + ".txt");
    session_.TypeReportDump(chosen.front());
  }
  chosen.resize(8);
  EXPECT_EQ(session_.RecentDumps(), chosen);

  // The next start lists them again.
  Session next(NextStart());
  next.Start();
  EXPECT_EQ(next.RecentDumps(), chosen);
}

TEST_F(SessionTest, ChoosingADumpFileRemembersItsFolder) {
  session_.Start();
  install_.dialogs.fileAnswers = {std::nullopt, std::string(kRegistryDump)};
  session_.ChooseDumpFile();  // cancelled: nothing changes
  EXPECT_EQ(session_.ReportDumps().text, kTempDump);
  session_.ChooseDumpFile();
  EXPECT_EQ(session_.ReportDumps().text, kRegistryDump);
  EXPECT_EQ(session_.Table().Text(1, 0), "+B1 Rapport");
  EXPECT_EQ(install_.settings.GetAppSetting("DumpPath", ""), "C:\\VOLTARIS\\Rapport\\");
}

TEST_F(SessionTest, TemplateChangeSetsCommand707FromTheDynamicLengthMarker) {
  install_.Write("Projektmallar/Oversikt.ini",
                 "[Common]\r\nProjekt=C3\r\n[Sheet]\r\nSTARTROW=10\r\nENDROW=20\r\nINFINITE=1\r\n");
  session_.Start();
  ASSERT_TRUE(session_.SingleSheetEnabled());

  session_.ChooseTemplate(0);  // Oversikt.xls: one growing page
  EXPECT_EQ(session_.Templates().text, "Oversikt.xls");
  EXPECT_TRUE(session_.Definition().Infinite);
  EXPECT_FALSE(session_.SingleSheetEnabled());

  session_.ChooseTemplate(0);
  EXPECT_FALSE(session_.SingleSheetEnabled());
  session_.ChooseTemplate(1);
  EXPECT_TRUE(session_.SingleSheetEnabled());
}

TEST_F(SessionTest, RefreshSequenceLoadsOnceAndOffersTheRepairForFbltay) {
  session_.Start();
  install_.Write("Windows/VOLTARIS.INI",
                 "[CURREPORT]\r\nREPORT_ID=fbltay\r\nREPORT_FIRST=3\r\n[CNCHSCR]\r\nA=1\r\n");
  install_.dialogs.answers = {base::MessageAnswer::kOk, base::MessageAnswer::kNo};  // pairing, repair
  const int loads = progress_.loads;

  session_.Refresh();
  EXPECT_FALSE(session_.Refreshing());
  EXPECT_EQ(progress_.loads, loads + 1);
  EXPECT_EQ(session_.CurrentReportId(), "fbltay");
  EXPECT_EQ(session_.SheetNumbers().text, "3");
  EXPECT_EQ(session_.Templates().errorLabel, "Ingen mall matchar senaste rapport. (fbltay)");
  ASSERT_EQ(install_.dialogs.messages.size(), 2u);
  EXPECT_EQ(install_.dialogs.messages[0].text, "Excel-rapportmallen saknar nödvändig tillhörande INI-fil");
  EXPECT_EQ(install_.dialogs.messages[1].text, "Infoga kolumn i yttre förbindningstabell?");
  EXPECT_EQ(install_.dialogs.messages[1].buttons, base::MessageButtons::kYesNo);
  EXPECT_EQ(session_.Table().Text(1, 0), "+A1 Panel");  // answered No: unchanged

  // Yes: the repair stays, the template check does not reload the dump.
  session_.FixExport(true);
  EXPECT_EQ(session_.Table().Text(1, 0), "+A1 Panel");
  EXPECT_EQ(session_.Table().Text(2, 2), "X1");
  EXPECT_EQ(progress_.loads, loads + 1);
}

TEST_F(SessionTest, RepairPairsTheIniAgainSoTheHeadingsFollowIt) {
  install_.Write("Projektmallar/PANEL.ini",
                 "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n[Common]\r\nProjekt=C3\r\n"
                 "[Sheet]\r\nSTARTROW=10\r\nENDROW=40\r\nCOLUMNS=Plats,Kabel,Typ\r\n");
  session_.Start();
  ASSERT_EQ(session_.Table().Text(0, 1), "Plats ");
  install_.dialogs.answers = {base::MessageAnswer::kYes};
  ASSERT_TRUE(session_.FixExport(true));
  // The inserted column pushed the headings one place right; the pairing puts them back.
  EXPECT_EQ(session_.Table().Text(0, 0), "");
  EXPECT_EQ(session_.Table().Text(0, 1), "Plats ");
  EXPECT_EQ(session_.Table().Text(0, 2), "Kabel ");
  EXPECT_EQ(session_.Table().Text(0, 3), "Typ ");
  EXPECT_EQ(session_.Table().Text(1, 0), "+A1 Panel");  // the repair itself stays
}

TEST_F(SessionTest, RepairPairsATemplateNamedByPathAgainInsteadOfListingItsFolder) {
  install_.Write("Projektmallar/Oversikt.ini",
                 "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n[Common]\r\nProjekt=C3\r\n"
                 "[Sheet]\r\nSTARTROW=10\r\nENDROW=40\r\nCOLUMNS=Plats,Kabel,Typ\r\n");
  session_.Start();  // lists the folder: the current report's PANEL.xlsx is chosen
  session_.UseTemplateWorkbook("C:\\Projektmallar\\Oversikt.xls");
  ASSERT_EQ(session_.Table().Text(0, 1), "Plats ");
  install_.dialogs.answers = {base::MessageAnswer::kYes};

  ASSERT_TRUE(session_.FixExport(true));
  // Listing the folder again would have gone back to PANEL.xlsx and its headings.
  EXPECT_EQ(session_.Templates().items, (List{"Oversikt.xls"}));
  EXPECT_EQ(session_.TemplatePath(), "C:\\Projektmallar\\Oversikt.xls");
  EXPECT_EQ(session_.Definition().IniPath, "C:\\Projektmallar\\Oversikt.ini");
  EXPECT_EQ(session_.Table().Text(0, 1), "Plats ");
  EXPECT_EQ(session_.Table().Text(1, 0), "+A1 Panel");  // the repair itself stays
}

TEST_F(SessionTest, CheckTemplateTellsWhatGenerationWouldFindAndKeepsTheTemplate) {
  install_.Write("Projektmallar/Mall.xlsx",
                 base::ReadWholeFile(testing::DataFile("templates/title_block.xlsx")).value());
  install_.Write("Projektmallar/Mall.ini",
                 "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n[Common]\r\nProjekt=C3\r\n"
                 "[Sheet]\r\nSHEETNO=H2\r\nNEXTSHEET=H3\r\nLOCATION=B5\r\nSTARTROW=0\r\nENDROW=40\r\n"
                 "COLUMNS=A,B\r\n");
  List warnings;
  const auto warn = [&warnings](std::string_view warning) { warnings.emplace_back(warning); };

  EXPECT_TRUE(session_.CheckTemplate("C:\\Projektmallar\\Mall.xlsx", warn));
  EXPECT_EQ(warnings, (List{"Varning: STARTROW är 0; rader ovanför rad 1 hoppas över."}));
  EXPECT_TRUE(install_.dialogs.messages.empty());
  EXPECT_EQ(session_.TemplatePath(), "C:\\Projektmallar\\Mall.xlsx");
  EXPECT_EQ(session_.Definition().TemplateSheetName, "Mall");
  EXPECT_EQ(session_.Fields().entries[0].caption, "Projekt");

  EXPECT_FALSE(session_.CheckTemplate("C:\\Projektmallar\\Saknas.xlsx", warn));
  EXPECT_EQ(install_.dialogs.messages.back().text, "Hittar ej filen C:\\Projektmallar\\Saknas.xlsx.");

  // A page whose every row lies above row 1 is refused, as generation refuses it.
  install_.Write("Projektmallar/Ovan.xlsx",
                 base::ReadWholeFile(testing::DataFile("templates/title_block.xlsx")).value());
  install_.Write("Projektmallar/Ovan.ini",
                 "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n[Sheet]\r\nSHEETNO=H2\r\n"
                 "NEXTSHEET=H3\r\nLOCATION=B5\r\nSTARTROW=-5\r\nENDROW=-1\r\nCOLUMNS=A\r\n");
  EXPECT_FALSE(session_.CheckTemplate("C:\\Projektmallar\\Ovan.xlsx", warn));
  const std::string refusal = install_.dialogs.messages.back().text;
  EXPECT_TRUE(refusal.starts_with("Sidans rader ligger ovanför rad 1 (STARTROW -5")) << refusal;
}

TEST_F(SessionTest, SummaryCountsRowsPlacementsAndThePagesGenerationWouldMake) {
  session_.Start();
  auto summary = session_.Summary();
  EXPECT_EQ(summary.rows, 6);
  EXPECT_EQ(summary.placements, 1);
  EXPECT_EQ(summary.pages, 2);  // three rows a page

  // An INI file generation would refuse gives no page count, and says nothing more about it.
  install_.Write("Projektmallar/PANEL.ini",
                 "[Tabs]\r\nTemplate=Sida\r\n[Common]\r\nProjekt=C3\r\n[Sheet]\r\nSTARTROW=1\r\n");
  const auto messagesBefore = install_.dialogs.messages.size();
  summary = session_.Summary();
  EXPECT_FALSE(summary.pages.has_value());
  EXPECT_EQ(install_.dialogs.messages.size(), messagesBefore);
}

// What each option does to the table is the options' matter; a toggle turns it the other way, and only
// turning the empty rows on reads the dump again.
TEST_F(SessionTest, TogglesTurnTheirOptionAndOnlyTheEmptyRowsOnReload) {
  session_.Start();
  const int loads = progress_.loads;
  session_.ToggleIncludeEmptyRows();
  EXPECT_TRUE(session_.IncludeEmptyRows());
  EXPECT_EQ(progress_.loads, loads + 1);
  session_.ToggleIncludeEmptyRows();
  session_.ToggleUseSlashTwo();
  EXPECT_FALSE(session_.IncludeEmptyRows());
  EXPECT_FALSE(session_.UseSlashTwo());
  EXPECT_EQ(progress_.loads, loads + 1);

  session_.ToggleSingleSheet();
  EXPECT_TRUE(session_.SingleSheet());
  EXPECT_EQ(install_.settings.GetAppSetting("SingleSheet", ""), "1");
  EXPECT_EQ(progress_.loads, loads + 1);
}

class FirstStartTest : public SessionTest {
 protected:
  FirstStartTest() : SessionTest(false) {}
};

TEST_F(FirstStartTest, NothingInstalledNothingChosen) {
  session_.Start();
  EXPECT_EQ(session_.CurrentReportId(), "");
  EXPECT_EQ(session_.SheetNumbers().text, "0");  // the empty first item padded to one character
  EXPECT_EQ(progress_.loads, 0);
  EXPECT_TRUE(install_.dialogs.messages.empty());
  EXPECT_EQ(LogMessages()[1], "VOLTARIS.INI not found");
}

}  // namespace
}  // namespace sw::session
