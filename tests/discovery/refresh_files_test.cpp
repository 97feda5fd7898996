#include "discovery/refresh_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <new>
#include <stdexcept>

#include "discovery/step_failure.h"
#include "fake_installation.h"

namespace sw::discovery {
namespace {

using List = std::vector<std::string>;

class RefreshFilesTest : public ::testing::Test {
 protected:
  explicit RefreshFilesTest(bool withCadFiles = true) : install_(withCadFiles) {}

  // Both halves, as the session runs them; what a choice sets off is noted in calls_.
  void Refresh() {
    log_.clear();
    notices_.clear();
    const DiscoverySources sources{.registry = install_.registry,
                                   .settings = install_.settings,
                                   .environment = install_.environment,
                                   .startLog = [this](std::string_view line) { log_.emplace_back(line); }};
    const auto directories = FillTemplateDirectories(sources, rdsDir_);
    Keep(directories);
    if (directories) calls_.push_back("templates for " + rdsDir_.text);
    const auto dumps = FillReportDumps(sources, voltDump_);
    Keep(dumps);
    if (dumps) calls_.push_back("dump " + voltDump_.text);
  }

  template <typename Status>
  void Keep(const base::Outcome<Status>& outcome) {
    notices_.insert(notices_.end(), outcome.notices.begin(), outcome.notices.end());
  }

  testing::FakeInstallation install_;
  ComboPicker rdsDir_;
  ComboPicker voltDump_;
  List log_;
  List calls_;
  std::vector<base::Notice> notices_;
};

const List kTemplateDirs = {"C:\\VOLTARIS\\Mallar\\", "C:\\VOLTARIS\\Extra\\",
                            "C:\\VOLTARIS\\Anvandarmallar\\", "\\", "C:\\Projektmallar\\"};
const List kDumps = {"C:\\VOLTARIS\\Rapport\\volt_report.txt",
                     "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt"};

TEST_F(RefreshFilesTest, FillsBothPickersFromTheInstallation) {
  Refresh();
  // Registry RDS values (the case-different copy and the lower-case name left out), the user
  // directory's last RDS_DEF with "\" added, "\" for the user directory without voltaris.cfg, and the
  // last project's directory.
  EXPECT_EQ(rdsDir_.items, kTemplateDirs);
  EXPECT_EQ(rdsDir_.text, "C:\\Projektmallar\\");  // no LastRdsDir: the last entry
  EXPECT_EQ(rdsDir_.selected, 4);
  // VOLTID "C:\VOLTARIS\Rapport" with "\" added; C:\VOLTARIS\Tom\ has no dump; the TEMP dump last.
  EXPECT_EQ(voltDump_.items, kDumps);
  EXPECT_EQ(voltDump_.text, kDumps[1]);
  EXPECT_EQ(calls_, (List{"templates for C:\\Projektmallar\\", "dump " + kDumps[1]}));
  EXPECT_EQ(log_,
            (List{"RefreshFiles:Fetching RDS-dirs from registry", "Fetching USER-dirs from registry",
                  "Fetching RDS-dir from C:\\VOLTARIS\\User\\voltaris.cfg",
                  "Fetching RDS-dir from C:\\VOLTARIS\\Saknas\\voltaris.cfg", "Fetching last used RDS-dir",
                  "Refreshing RDS", "Fetching VOLTID-dirs from registry", "Fetching last used VOLTID-dir"}));
  EXPECT_TRUE(notices_.empty());
}

TEST_F(RefreshFilesTest, EarlierChoiceSurvivesWhileLastRdsDirExists) {
  install_.settings.SaveAppSetting("LastRdsDir", "C:\\VOLTARIS\\Extra\\");
  rdsDir_.SetText("C:\\VOLTARIS\\Mallar\\");
  Refresh();
  EXPECT_EQ(rdsDir_.text, "C:\\VOLTARIS\\Mallar\\");
  EXPECT_EQ(rdsDir_.selected, 0);

  rdsDir_.Clear();  // nothing on screen: LastRdsDir itself
  Refresh();
  EXPECT_EQ(rdsDir_.text, "C:\\VOLTARIS\\Extra\\");

  install_.Remove("VOLTARIS/Extra");  // gone: nothing is chosen, not even the screen's choice
  rdsDir_.SetText("C:\\VOLTARIS\\Mallar\\");
  Refresh();
  EXPECT_EQ(rdsDir_.text, "");
  EXPECT_EQ(rdsDir_.selected, -1);
}

TEST_F(RefreshFilesTest, LastVoltDmpIsShownEvenOutsideTheList) {
  install_.Write("Annan/volt_report.txt", "%X%\r\n");
  install_.settings.SaveAppSetting("LastVoltDmp", "C:\\Annan\\volt_report.txt");
  Refresh();
  EXPECT_EQ(voltDump_.text, "C:\\Annan\\volt_report.txt");
  EXPECT_EQ(voltDump_.selected, -1);
  EXPECT_EQ(calls_.back(), "dump C:\\Annan\\volt_report.txt");

  install_.Remove("Annan");
  calls_.clear();
  Refresh();
  EXPECT_EQ(voltDump_.items, kDumps);
  EXPECT_EQ(voltDump_.text, "");
  EXPECT_EQ(calls_, List{"templates for C:\\Projektmallar\\"});  // no dump chosen
}

TEST_F(RefreshFilesTest, AUserValueOfTwoDirectoriesWithOneMissingFile) {
  install_.MergeReg(
      "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS]\n\"USER\"=\"C:\\\\A\\\\;C:\\\\B\\\\\"\n");
  install_.Write("A/voltaris.cfg", "(setq RDS_DEF \"C:\\\\A\\\\Mallar\")\r\n");
  Refresh();
  EXPECT_EQ(rdsDir_.items, (List{"C:\\VOLTARIS\\Mallar\\", "C:\\VOLTARIS\\Extra\\", "C:\\A\\Mallar\\", "\\",
                                 "C:\\Projektmallar\\"}));
}

TEST_F(RefreshFilesTest, AFailingStepIsToldAndSkipped) {
  // The project configuration's keyword stands at its line's end: step D fails with error 5.
  install_.Write("Projekt/Kraft/kraft.cfg", "(setq X 1)\r\nRDS_DEF\r\n");
  Refresh();
  EXPECT_EQ(notices_, (std::vector<base::Notice>{{.text = "5 - Ogiltigt proceduranrop eller argument",
                                                  .title = {},
                                                  .icon = base::MessageIcon::kExclamation}}));
  EXPECT_EQ(rdsDir_.items.size(), 4u);  // without the project's directory
  EXPECT_EQ(rdsDir_.text, "\\");        // and the steps after it ran
  EXPECT_EQ(voltDump_.items, kDumps);
  EXPECT_EQ(calls_, (List{"templates for \\", "dump " + kDumps[1]}));
}

TEST(StepFailureTest, EachFailureIsToldByItsNumberAndExcelsOwnNotAtAll) {
  const struct {
    std::function<void()> step;
    bool ranThrough;
    std::vector<std::string> told;
  } cases[] = {
      {[] {}, true, {}},
      {[] { throw NumberedError(kPermissionDenied, "Åtkomst nekad"); }, false, {"70 - Åtkomst nekad"}},
      {[] { throw NumberedError(kApplicationDefined, "Excel"); }, false, {}},
      {[] { throw std::runtime_error("Trasig"); }, false, {"5 - Trasig"}},
      {[] { throw std::bad_alloc(); }, false, {"7 - Slut på minne"}},
      {[] { throw std::filesystem::filesystem_error("x", std::error_code()); },
       false,
       {"75 - Fel vid åtkomst till sökväg/fil"}},
      {[] { throw 1; }, false, {"5 - Ogiltigt proceduranrop eller argument"}},
  };
  for (const auto& c : cases) {
    const auto outcome = RunStep(c.step);
    EXPECT_EQ(static_cast<bool>(outcome), c.ranThrough);
    std::vector<std::string> told;
    for (const auto& notice : outcome.notices) {
      told.push_back(notice.text);
      EXPECT_EQ(notice.icon, base::MessageIcon::kExclamation);
    }
    EXPECT_EQ(told, c.told);
  }
}

class NoInstallationTest : public RefreshFilesTest {
 protected:
  NoInstallationTest() : RefreshFilesTest(false) {}
};

TEST_F(NoInstallationTest, BothListsStayEmptyAndNothingIsChosen) {
  rdsDir_.Add("gammal");
  voltDump_.SetText("gammal.txt");
  Refresh();
  EXPECT_TRUE(rdsDir_.items.empty());
  EXPECT_EQ(rdsDir_.text, "");
  EXPECT_TRUE(voltDump_.items.empty());
  EXPECT_EQ(voltDump_.text, "");
  EXPECT_EQ(calls_, List{"templates for "});
  EXPECT_EQ(log_.size(), 6u);  // no "Fetching RDS-dir from" line without a USER value
  EXPECT_TRUE(notices_.empty());
}

}  // namespace
}  // namespace sw::discovery
