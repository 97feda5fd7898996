#include "app/workspace/workspace.h"

#include <gtest/gtest.h>

#include "base/file_io.h"
#include "fake_installation.h"
#include "template/template_list.h"

namespace sw::workspace {
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

class WorkspaceTest : public ::testing::Test {
 protected:
  explicit WorkspaceTest(bool withCadFiles = true)
      : install_(withCadFiles),
        log_(logEnvironment_, install_.temp.path()),
        window_({.registry = install_.registry,
                 .settings = install_.settings,
                 .environment = install_.environment,
                 .dialogs = install_.dialogs,
                 .startLog = &log_,
                 .progress = &progress_,
                 .layoutColumns = {}}) {}

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
  base::FakeEnvironment logEnvironment_{{std::string(app::kStartLogVariable), "1"}};
  app::StartLog log_;
  CountingProgress progress_;
  Workspace window_;
};

TEST_F(WorkspaceTest, StartUpOverTheInstallation) {
  List steps;
  window_.Load([&] { steps.push_back("window"); });

  EXPECT_EQ(window_.currentReportId, "PANEL");
  EXPECT_EQ(window_.sheetNo.items, (List{"7", "07", "007", "0007", "00007", "000007"}));
  EXPECT_EQ(window_.sheetNo.text, "7");
  EXPECT_FALSE(window_.includeEmptyRows);
  EXPECT_TRUE(window_.useSlashTwo);
  EXPECT_FALSE(window_.singleSheet);

  EXPECT_EQ(window_.rdsDir.text, "C:\\Projektmallar\\");
  EXPECT_EQ(window_.rdsFile.items, (List{"Oversikt.xls", "PANEL.xlsx"}));
  EXPECT_EQ(window_.rdsFile.text, "PANEL.xlsx");
  EXPECT_EQ(window_.rdsFile.backColour, templ::kPickerLightYellow);
  EXPECT_FALSE(window_.rdsFile.errorLabelVisible);
  EXPECT_EQ(window_.definition.IniPath, "C:\\Projektmallar\\\\PANEL.ini");
  EXPECT_EQ(window_.fields.entries[1].caption, "Ritad av");
  EXPECT_EQ(window_.fields.entries[1].text, "AB");

  // The last dump listed is chosen, remembered and loaded.
  EXPECT_EQ(window_.voltDump.text, kTempDump);
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), kTempDump);
  EXPECT_EQ(progress_.loads, 1);
  ASSERT_EQ(window_.table.Rows(), 7);
  EXPECT_EQ(window_.table.Text(1, 0), "+A1 Panel");
  EXPECT_EQ(window_.table.Text(3, 3), "Fl\xc3\xa4kt");
  EXPECT_TRUE(window_.singleSheetEnabled);
  EXPECT_TRUE(install_.dialogs.messages.empty());

  EXPECT_EQ(steps, List{"window"});
  EXPECT_EQ(
      LogMessages(),
      (List{"Fetching data from VOLTARIS.INI", "VOLTARIS.INI successfully processed.", "Restore Mainform",
            "Refreshing files", "RefreshFiles:Fetching RDS-dirs from registry",
            "Fetching USER-dirs from registry", "Fetching RDS-dir from C:\\VOLTARIS\\User\\voltaris.cfg",
            "Fetching RDS-dir from C:\\VOLTARIS\\Saknas\\voltaris.cfg", "Fetching last used RDS-dir",
            "Refreshing RDS", "Fetching VOLTID-dirs from registry", "Fetching last used VOLTID-dir",
            "Mainform successfully loaded"}));
}

TEST_F(WorkspaceTest, SheetNumberIsPaddedToPageNoLenAndTogglesComeFromTheSettings) {
  install_.Write("Windows/VOLTARIS.INI", "[CURREPORT]\r\nREPORT_ID=PANEL\r\nREPORT_FIRST=1\r\n");
  install_.settings.SaveAppSetting("PageNoLen", "3");
  install_.settings.SaveAppSetting("IncludeEmptyRows", "2");
  install_.settings.SaveAppSetting("UseSlashTwo", "nej");  // no number: as if missing
  window_.Load();
  EXPECT_EQ(window_.sheetNo.text, "001");
  EXPECT_TRUE(window_.includeEmptyRows);
  EXPECT_TRUE(window_.useSlashTwo);
}

TEST_F(WorkspaceTest, CloseSavesTheLastChoices) {
  window_.Load();
  window_.TypeTemplateDirectory("C:\\VOLTARIS\\Mallar\\");
  install_.settings.values.clear();
  window_.SaveOnClose();
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), kTempDump);
  EXPECT_EQ(install_.settings.GetAppSetting("LastRdsDir", ""), "C:\\VOLTARIS\\Mallar\\");

  // Started again, the remembered choices come back.
  Workspace again({.registry = install_.registry,
                   .settings = install_.settings,
                   .environment = install_.environment,
                   .dialogs = install_.dialogs});
  again.Load();
  EXPECT_EQ(again.rdsDir.text, "C:\\VOLTARIS\\Mallar\\");
  EXPECT_EQ(again.rdsFile.items, List{"Apparater.xlsx"});
  EXPECT_EQ(again.rdsFile.errorLabel, "Ingen mall matchar senaste rapport. (PANEL)");
  EXPECT_TRUE(again.rdsFile.errorLabelVisible);
  EXPECT_EQ(again.voltDump.text, kTempDump);
}

TEST_F(WorkspaceTest, UnmatchedListingDropsThePreviousTemplate) {
  window_.Load();
  ASSERT_FALSE(window_.definition.IniPath.empty());
  install_.Remove("Projektmallar/PANEL.xlsx");
  window_.cboRdsDir_Change();

  EXPECT_EQ(window_.rdsFile.items, List{"Oversikt.xls"});
  EXPECT_EQ(window_.rdsFile.text, "");
  EXPECT_TRUE(window_.rdsFile.errorLabelVisible);
  EXPECT_EQ(window_.definition.IniPath, "");
  EXPECT_EQ(window_.fields.entries[1].caption, "");
  EXPECT_FALSE(window_.fields.entries[1].enabled);
  ASSERT_EQ(install_.dialogs.messages.size(), 1u);
  EXPECT_EQ(install_.dialogs.messages[0].text, "Excel-rapportmallen saknar nödvändig tillhörande INI-fil");
}

TEST_F(WorkspaceTest, DumpChangeLoadsOnlyWhenNotRefreshingButAlwaysStoresTheChoice) {
  window_.Load();
  const int loads = progress_.loads;

  window_.refreshing = true;
  window_.ChooseReportDump(0);
  EXPECT_EQ(progress_.loads, loads);
  EXPECT_EQ(window_.table.Rows(), 7);
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), kRegistryDump);

  window_.refreshing = false;
  window_.cboVoltDump_Click();
  EXPECT_EQ(progress_.loads, loads + 1);
  EXPECT_EQ(window_.table.Text(1, 0), "+B1 Rapport");

  window_.TypeReportDump("C:\\Saknas.txt");
  EXPECT_EQ(install_.dialogs.messages.back().text, "Hittar ej filen C:\\Saknas.txt.");
  EXPECT_EQ(install_.settings.GetAppSetting("LastVoltDmp", ""), "C:\\Saknas.txt");
}

TEST_F(WorkspaceTest, TemplateChangeSetsCommand707FromTheDynamicLengthMarker) {
  install_.Write("Projektmallar/Oversikt.ini",
                 "[Common]\r\nProjekt=C3\r\n[Sheet]\r\nSTARTROW=10\r\nENDROW=20\r\nINFINITE=1\r\n");
  window_.Load();
  ASSERT_TRUE(window_.singleSheetEnabled);

  window_.ChooseTemplate(0);  // Oversikt.xls: one growing page
  EXPECT_EQ(window_.rdsFile.text, "Oversikt.xls");
  EXPECT_TRUE(window_.definition.Infinite);
  EXPECT_FALSE(window_.singleSheetEnabled);

  window_.refreshing = true;  // no reload: the cleared marker stays cleared
  window_.cboRdsFile_Change();
  EXPECT_TRUE(window_.singleSheetEnabled);

  window_.refreshing = false;
  window_.cboRdsFile_Click();
  EXPECT_FALSE(window_.singleSheetEnabled);
  window_.ChooseTemplate(1);
  EXPECT_TRUE(window_.singleSheetEnabled);
}

TEST_F(WorkspaceTest, RefreshSequenceLoadsOnceAndOffersTheRepairForFbltay) {
  window_.Load();
  install_.Write("Windows/VOLTARIS.INI",
                 "[CURREPORT]\r\nREPORT_ID=fbltay\r\nREPORT_FIRST=3\r\n[CNCHSCR]\r\nA=1\r\n");
  install_.dialogs.answers = {base::MessageAnswer::kOk, base::MessageAnswer::kNo};  // pairing, repair
  const int loads = progress_.loads;

  window_.RefreshSequence();
  EXPECT_FALSE(window_.refreshing);
  EXPECT_EQ(progress_.loads, loads + 1);
  EXPECT_EQ(window_.currentReportId, "fbltay");
  EXPECT_EQ(window_.sheetNo.text, "3");
  EXPECT_EQ(window_.rdsFile.errorLabel, "Ingen mall matchar senaste rapport. (fbltay)");
  ASSERT_EQ(install_.dialogs.messages.size(), 2u);
  EXPECT_EQ(install_.dialogs.messages[0].text, "Excel-rapportmallen saknar nödvändig tillhörande INI-fil");
  EXPECT_EQ(install_.dialogs.messages[1].text, "Infoga kolumn i yttre förbindningstabell?");
  EXPECT_EQ(window_.table.Text(1, 0), "+A1 Panel");  // answered No: unchanged

  // Yes: the repair stays, the template check does not reload the dump.
  window_.AdjustExportFile(true);
  EXPECT_EQ(window_.table.Text(1, 0), "+A1 Panel");
  EXPECT_EQ(window_.table.Text(2, 2), "X1");
  EXPECT_EQ(progress_.loads, loads + 1);
}

TEST_F(WorkspaceTest, RepairPairsTheIniAgainSoTheHeadingsFollowIt) {
  install_.Write("Projektmallar/PANEL.ini",
                 "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n[Common]\r\nProjekt=C3\r\n"
                 "[Sheet]\r\nSTARTROW=10\r\nENDROW=40\r\nCOLUMNS=Plats,Kabel,Typ\r\n");
  window_.Load();
  ASSERT_EQ(window_.table.Text(0, 1), "Plats ");
  install_.dialogs.answers = {base::MessageAnswer::kYes};
  ASSERT_TRUE(window_.AdjustExportFile(true));
  // The inserted column pushed the headings one place right; the pairing puts them back.
  EXPECT_EQ(window_.table.Text(0, 0), "");
  EXPECT_EQ(window_.table.Text(0, 1), "Plats ");
  EXPECT_EQ(window_.table.Text(0, 2), "Kabel ");
  EXPECT_EQ(window_.table.Text(0, 3), "Typ ");
  EXPECT_EQ(window_.table.Text(1, 0), "+A1 Panel");  // the repair itself stays
}

TEST_F(WorkspaceTest, TogglesStoreTheirStateAndReloadOrTidy) {
  window_.Load();
  const int loads = progress_.loads;
  window_.ToggleIncludeEmptyRows();  // on: reload
  EXPECT_EQ(install_.settings.GetAppSetting("IncludeEmptyRows", ""), "1");
  EXPECT_EQ(progress_.loads, loads + 1);
  window_.ToggleIncludeEmptyRows();  // off: the empty row goes without a reload
  EXPECT_EQ(install_.settings.GetAppSetting("IncludeEmptyRows", ""), "0");
  EXPECT_EQ(progress_.loads, loads + 1);
  EXPECT_EQ(window_.table.Rows(), 6);

  window_.ToggleUseSlashTwo();  // off: "/2" removed in place
  EXPECT_EQ(install_.settings.GetAppSetting("UseSlashTwo", ""), "0");
  EXPECT_EQ(window_.table.Text(2, 3), "Pump");
  window_.ToggleUseSlashTwo();
  EXPECT_EQ(window_.table.Text(2, 3), "Pump/2");
  EXPECT_EQ(progress_.loads, loads + 2);

  window_.ToggleSingleSheet();
  EXPECT_TRUE(window_.singleSheet);
  EXPECT_EQ(install_.settings.GetAppSetting("SingleSheet", ""), "1");
  EXPECT_EQ(progress_.loads, loads + 2);
}

class FirstStartTest : public WorkspaceTest {
 protected:
  FirstStartTest() : WorkspaceTest(false) {}
};

TEST_F(FirstStartTest, NothingInstalledNothingChosen) {
  window_.Load();
  EXPECT_EQ(window_.currentReportId, "");
  EXPECT_EQ(window_.sheetNo.text, "0");  // the empty first item padded to one character
  EXPECT_TRUE(window_.rdsDir.items.empty());
  EXPECT_TRUE(window_.voltDump.items.empty());
  EXPECT_EQ(window_.voltDump.text, "");
  EXPECT_EQ(progress_.loads, 0);
  EXPECT_TRUE(install_.dialogs.messages.empty());
  EXPECT_EQ(LogMessages()[1], "VOLTARIS.INI not found");
}

}  // namespace
}  // namespace sw::workspace
