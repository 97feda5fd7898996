// The three commands that hand a file to another program, driven through the session as the window
// does: with Excel through automation (a recording Excel stands in) and with the desktop's programs.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "base/file_io.h"
#include "excel/package/package_engine.h"
#include "fake_installation.h"
#include "generate/run_error.h"
#include "recording_engine.h"
#include "recording_launcher.h"
#include "session/desktop_external_editor.h"
#include "session/excel_external_editor.h"
#include "session/session.h"
#include "session/template_ini_path.h"

namespace sw::session {
namespace {

namespace fs = std::filesystem;
using List = std::vector<std::string>;

const std::string kDump = "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt";
// The template directory picker shows "C:\Projektmallar\"; the commands join it and the template with
// a "\" of their own.
const std::string kTemplate = "C:\\Projektmallar\\\\PANEL.xlsx";
const std::string kIni = "C:\\Projektmallar\\\\PANEL.ini";

std::string HostText(const fs::path& path) {
  const auto text = path.u8string();
  return std::string(text.begin(), text.end());
}

fs::path FromUtf8(const std::string& text) {
  return fs::path(std::u8string(text.begin(), text.end()));
}

// A started session over the fake installation whose editing commands go to `editor`.
class EditingFixture {
 protected:
  explicit EditingFixture(ExternalEditor& editor)
      : session_({.registry = install_.registry,
                  .settings = install_.settings,
                  .environment = install_.environment,
                  .dialogs = install_.dialogs,
                  .launcher = launcher_,
                  .createExcel = [this] { return excel::CreateRecordingApplication(recording_); },
                  .externalEditor = &editor}) {}

  void Start() {
    session_.Start();
    ASSERT_EQ(session_.Templates().text, "PANEL.xlsx");
    ASSERT_EQ(session_.ReportDumps().text, kDump);
    install_.dialogs.messages.clear();
  }

  // What the user was told, as "<title>|<text>".
  List Told() const {
    List told;
    for (const auto& message : install_.dialogs.messages) told.push_back(message.title + "|" + message.text);
    return told;
  }
  bool NothingStarted() const {
    return launcher_.edited.empty() && launcher_.opened.empty() && launcher_.commandLines.empty() &&
           recording_.applicationsCreated() == 0;
  }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  excel::Recording recording_;
  Session session_;
};

ExternalEditingServices ServicesOf(testing::FakeInstallation& install, testing::RecordingLauncher& launcher,
                                   excel::Recording& recording) {
  return {.dialogs = install.dialogs, .launcher = launcher, .createExcel = [&recording] {
            return excel::CreateRecordingApplication(recording);
          }};
}

// --- With Excel, as on Windows.

class ExcelEditingTest : public ::testing::Test, public EditingFixture {
 protected:
  ExcelEditingTest() : EditingFixture(editor_) {}
  ExcelExternalEditor editor_{ServicesOf(install_, launcher_, recording_)};

  bool Recorded(const std::string& line) const {
    const auto& lines = recording_.lines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  std::ptrdiff_t PositionOf(const std::string& line) const {
    const auto& lines = recording_.lines();
    return std::find(lines.begin(), lines.end(), line) - lines.begin();
  }
};

TEST_F(ExcelEditingTest, TemplateOpensWritableInAVisibleExcel) {
  Start();
  // The engine is given the file as this platform names it.
  const std::string hostTemplate = generate::EnginePath(kTemplate);
  ASSERT_TRUE(fs::equivalent(FromUtf8(hostTemplate), install_.Host("Projektmallar/PANEL.xlsx")));
  recording_.AddWorkbookFile(hostTemplate, {"Mall"});
  session_.EditTemplateWorkbook();
  EXPECT_EQ(recording_.applicationsCreated(), 1);
  EXPECT_TRUE(Recorded("Workbooks.Open \"" + hostTemplate + "\", ReadOnly:=False"));
  EXPECT_TRUE(Recorded("Visible = True"));
  EXPECT_TRUE(Told().empty());

  session_.EditTemplateWorkbook();  // a new Excel every time
  EXPECT_EQ(recording_.applicationsCreated(), 2);
  EXPECT_TRUE(launcher_.opened.empty());
}

TEST_F(ExcelEditingTest, DumpIsImportedWithTextColumnsAndFittedColumns) {
  Start();
  ASSERT_TRUE(fs::equivalent(FromUtf8(generate::EnginePath(kDump)),
                             install_.Host("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt")));
  session_.EditReportDump();
  EXPECT_EQ(recording_.applicationsCreated(), 1);
  const std::string openText =
      "Workbooks.OpenText FileName:=\"" + generate::EnginePath(kDump) +
      "\", Origin:=2, StartRow:=1, DataType:=1, TextQualifier:=-4142, ConsecutiveDelimiter:=False, "
      "Tab:=True, "
      "Semicolon:=False, Comma:=False, Space:=False, Other:=False, FieldInfo:=Array(Array(1, 2), Array(2, "
      "2), "
      "Array(3, 2), Array(4, 2), Array(5, 2), Array(6, 2), Array(7, 2), Array(8, 2), Array(9, 2), Array(10, "
      "2), "
      "Array(11, 2), Array(12, 2), Array(13, 2), Array(14, 2), Array(15, 2), Array(16, 2), Array(17, 2), "
      "Array(18, 2), Array(19, 2), Array(20, 2))";
  ASSERT_TRUE(Recorded(openText));
  // Excel is shown before the import, so the user sees it working.
  EXPECT_LT(PositionOf("Visible = True"), PositionOf(openText));
  // Every column fitted, then the user starts at the top-left cell.
  const auto& lines = recording_.lines();
  const auto fitted =
      std::find_if(lines.begin() + PositionOf(openText), lines.end(), [](const std::string& line) {
        return line.rfind("Sheets(1).Cells", 0) == 0 && line.find("AutoFit") != std::string::npos;
      });
  EXPECT_NE(fitted, lines.end()) << ::testing::PrintToString(lines);
  EXPECT_EQ(lines.back(), "Sheets(1).Cells(1, 1).Select") << ::testing::PrintToString(lines);
  EXPECT_TRUE(Told().empty());
}

TEST_F(ExcelEditingTest, IniGoesToNotepadWithThePathInQuotes) {
  Start();
  session_.EditTemplateIni();
  EXPECT_EQ(launcher_.commandLines, List{"notepad.exe \"" + kIni + "\""});
  EXPECT_TRUE(launcher_.edited.empty());
  EXPECT_EQ(recording_.applicationsCreated(), 0);
  EXPECT_TRUE(Told().empty());

  launcher_.starts = false;
  session_.EditTemplateIni();
  EXPECT_EQ(Told(), List{"Fel|Det gick inte att starta något program som kan öppna\r" + kIni});
}

TEST_F(ExcelEditingTest, WithoutExcelTheUserIsToldOnce) {
  Start();
  recording_.FailCall("CreateObject", 1, excel::kCannotCreateObject);
  recording_.FailCall("CreateObject", 2, excel::kCannotCreateObject);
  session_.EditTemplateWorkbook();
  session_.EditReportDump();
  EXPECT_EQ(Told(), (List{"Active-X fel|Kan ej starta Microsoft Excel.\rKontrollera installationen.",
                          "Active-X fel|Kan ej starta Microsoft Excel.\rKontrollera installationen."}));
  EXPECT_EQ(install_.dialogs.messages[0].icon, base::MessageIcon::kCritical);
}

TEST_F(ExcelEditingTest, AnExcelErrorEndsTheImport) {
  Start();
  recording_.FailCall("OpenText", 1, excel::kApplicationDefined, "Filen kan inte öppnas.");
  session_.EditReportDump();
  EXPECT_EQ(Told(), List{"Fel|1004 - Filen kan inte öppnas."});
  EXPECT_FALSE(std::any_of(recording_.lines().begin(), recording_.lines().end(), [](const std::string& line) {
    return line.find("AutoFit") != std::string::npos;
  }));
}

// --- What every platform shares: the checks before anything is started.

TEST_F(ExcelEditingTest, NoTemplateChosenIsToldForTheWorkbookAndTheIni) {
  session_.UseTemplateWorkbook("C:\\Projektmallar\\   ");  // only spaces: nothing chosen
  install_.dialogs.messages.clear();
  session_.EditTemplateWorkbook();
  session_.EditTemplateIni();
  EXPECT_EQ(Told(), (List{"Fel|Ingen Excelmall vald.", "Fel|Ingen Excelmall vald."}));
  for (const auto& message : install_.dialogs.messages) {
    EXPECT_EQ(message.icon, base::MessageIcon::kExclamation);
    EXPECT_EQ(message.buttons, base::MessageButtons::kOk);
  }
  EXPECT_TRUE(NothingStarted());

  // An empty template picker, as a folder without a matching template leaves it.
  install_.Remove("Projektmallar/PANEL.xlsx");
  session_.Start();
  ASSERT_EQ(session_.Templates().text, "");
  install_.dialogs.messages.clear();
  session_.EditTemplateIni();
  EXPECT_EQ(Told(), List{"Fel|Ingen Excelmall vald."});
  EXPECT_TRUE(NothingStarted());
}

TEST_F(ExcelEditingTest, MissingFilesAreSilent) {
  Start();
  install_.Remove("Projektmallar/PANEL.ini");
  session_.EditTemplateIni();  // the template is there, its INI file is not
  install_.Remove("Projektmallar/PANEL.xlsx");
  session_.EditTemplateWorkbook();
  session_.TypeReportDump("C:\\Saknas\\rapport.txt");
  session_.TypeReportDump("   ");
  install_.dialogs.messages.clear();
  session_.EditReportDump();  // only spaces
  session_.TypeReportDump("C:\\Saknas\\rapport.txt");
  install_.dialogs.messages.clear();
  session_.EditReportDump();
  session_.TypeReportDump("C:\\Projektmallar");  // a folder, not a dump
  install_.dialogs.messages.clear();
  session_.EditReportDump();
  EXPECT_TRUE(Told().empty()) << ::testing::PrintToString(Told());
  EXPECT_TRUE(NothingStarted());
}

TEST_F(ExcelEditingTest, IniNameIsCutAtTheLastDotOfTheWholePath) {
  // A template without an extension in a folder with a "." in its name: the cut falls in the folder's
  // name, and that file is the one opened, not the INI file beside the template.
  install_.Write("Mallar.2019/PLAN", "mall");
  install_.Write("Mallar.2019/PLAN.ini", "[Common]\r\n");
  install_.Write("Mallar.ini", "[Common]\r\n");
  session_.UseTemplateWorkbook("C:\\Mallar.2019\\PLAN");
  install_.dialogs.messages.clear();
  session_.EditTemplateIni();
  EXPECT_EQ(launcher_.commandLines, List{"notepad.exe \"C:\\Mallar.ini\""});

  EXPECT_EQ(TemplateIniPath("C:\\Mallar\\PLAN.xlsx"), "C:\\Mallar\\PLAN.ini");
  EXPECT_EQ(TemplateIniPath("C:\\Mallar\\Rapport.v2.XLSM"), "C:\\Mallar\\Rapport.v2.ini");
  EXPECT_EQ(TemplateIniPath("C:\\Mallar.2019\\PLAN"), "C:\\Mallar.ini");
  EXPECT_EQ(TemplateIniPath("PLAN."), "PLAN.ini");
  EXPECT_EQ(TemplateIniPath("C:\\Mallar\\PLAN"), std::nullopt);
}

// --- With the desktop's programs, where there is no Excel.

class DesktopEditingTest : public ::testing::Test, public EditingFixture {
 protected:
  DesktopEditingTest() : EditingFixture(editor_) {}
  testing::TempDir systemTemp_;
  DesktopExternalEditor editor_{ServicesOf(install_, launcher_, recording_), systemTemp_.path()};

  static List FilesBelow(const fs::path& folder) {
    List files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file()) files.push_back(HostText(fs::relative(entry.path(), folder)));
    }
    std::sort(files.begin(), files.end());
    return files;
  }
};

TEST_F(DesktopEditingTest, TemplateAndIniGoToTheDesktopsPrograms) {
  Start();
  session_.EditTemplateWorkbook();
  session_.EditTemplateIni();
  EXPECT_EQ(launcher_.opened, List{kTemplate});
  EXPECT_EQ(launcher_.edited, List{kIni});
  EXPECT_TRUE(launcher_.commandLines.empty());
  EXPECT_EQ(recording_.applicationsCreated(), 0);
  EXPECT_TRUE(Told().empty());

  launcher_.starts = false;
  session_.EditTemplateWorkbook();
  EXPECT_EQ(Told(), List{"Fel|Det gick inte att starta något program som kan öppna\r" + kTemplate});
}

TEST_F(DesktopEditingTest, DumpBecomesAFreshWorkbookInTheTemporaryFolder) {
  Start();
  const fs::path dumpFolder = install_.Host("Temp/VOLTARIS/VOLTARIS ic");
  const List besideTheDump = FilesBelow(dumpFolder);

  session_.EditReportDump();
  session_.EditReportDump();  // the second one does not touch the first
  ASSERT_EQ(launcher_.opened.size(), 2u);
  EXPECT_NE(launcher_.opened[0], launcher_.opened[1]);
  for (const auto& opened : launcher_.opened) {
    const fs::path workbook = FromUtf8(opened);
    EXPECT_EQ(workbook.filename(), "volt_report.xlsx");
    EXPECT_EQ(workbook.parent_path().parent_path(), systemTemp_.path());
    // Written completely before it was handed over: the engine opens it again.
    excel::PackageEngine engine;
    EXPECT_NE(engine.OpenWorkbook(opened, {}), 0);
  }
  EXPECT_EQ(FilesBelow(dumpFolder), besideTheDump);
  EXPECT_EQ(FilesBelow(systemTemp_.path()).size(), 2u);
  EXPECT_EQ(recording_.applicationsCreated(), 0);  // the built-in engine, never Excel
  EXPECT_TRUE(Told().empty());
}

// The window's hourglass and progress bar, as the editor drives them.
class RecordingProgress final : public report::LoadProgress {
 public:
  explicit RecordingProgress(const testing::RecordingLauncher& launcher) : launcher_(launcher) {}
  List calls;
  std::vector<int> steps;

  void Begin(int lineCount) override { calls.push_back("Begin " + std::to_string(lineCount)); }
  void Step(int linesDone) override { steps.push_back(linesDone); }
  void End() override { calls.push_back("End, " + std::to_string(launcher_.opened.size()) + " opened"); }

 private:
  const testing::RecordingLauncher& launcher_;
};

TEST_F(DesktopEditingTest, DumpWrittenAsAWorkbookShowsItsProgress) {
  Start();
  std::string dump = "%+A1 Panel%\r\n";
  for (int row = 1; row <= 1000; ++row) dump += "\tX1\t" + std::to_string(row) + "\tPump\r\n";
  install_.Write("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt", dump);
  RecordingProgress progress(launcher_);
  ExternalEditingServices services = ServicesOf(install_, launcher_, recording_);
  services.progress = &progress;
  DesktopExternalEditor editor(services, systemTemp_.path());

  // Percent of the rows written, from 0 to 100 in order; the bar goes before the workbook is opened.
  editor.OpenReportDump(kDump);
  EXPECT_EQ(progress.calls, (List{"Begin 101", "End, 0 opened"}));
  ASSERT_EQ(progress.steps.size(), 101u);
  for (int step = 0; step <= 100; ++step) EXPECT_EQ(progress.steps[static_cast<std::size_t>(step)], step);
  EXPECT_EQ(launcher_.opened.size(), 1u);

  // A dump that cannot be read: the bar goes all the same, before the failure is told.
  progress.calls.clear();
  editor.OpenReportDump("C:\\Temp\\saknas.txt");
  EXPECT_EQ(progress.calls, (List{"Begin 101", "End, 1 opened"}));
  EXPECT_EQ(Told().size(), 1u);
}

TEST_F(DesktopEditingTest, TemporaryFolderThatCannotBeWrittenIsTold) {
  Start();
  DesktopExternalEditor nowhere(ServicesOf(install_, launcher_, recording_), systemTemp_.path() / "saknas");
  nowhere.OpenReportDump(kDump);
  EXPECT_EQ(Told(), List{"Fel|Det går inte att skriva en arbetsbok i den tillfälliga mappen\r" +
                         HostText(systemTemp_.path() / "saknas")});
  EXPECT_TRUE(launcher_.opened.empty());
}

}  // namespace
}  // namespace sw::session
