// The workbook a report dump becomes where there is no Excel, read back by openpyxl: the first twenty
// columns hold the fields exactly as the CAD system wrote them, the columns after them what Excel's
// General format makes of them.
#include <gtest/gtest.h>

#include <filesystem>

#include "external_tools.h"
#include "recording_launcher.h"
#include "scripted_dialogs.h"
#include "session/desktop_external_editor.h"
#include "temp_dir.h"

namespace sw::session {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = SW_SOURCE_DIR;

TEST(ExternalEditingReadersTest, DumpWorkbookKeepsTextColumnsAndConvertsTheRest) {
  ASSERT_TRUE(testing::HaveOpenpyxl()) << "python3-openpyxl is missing (scripts/setup.sh installs it)";
  testing::TempDir dumps;
  testing::TempDir systemTemp;
  // Columns 1 to 20, then 21 to 26. The file is Windows-1252 ("\xC5" is "Å", "\xE4" is "ä").
  std::string line = "007\t5%\t1/2\t\"citat\"\t\t\xC5sa";
  for (int column = 7; column <= 20; ++column) line += "\t" + std::to_string(column);
  line += "\t007\t5%\tFl\xE4kt\t12.5%\t-3.5\t\"7\"";
  const fs::path dump = dumps.Write("Rapport 1.txt", line + "\r\na\t\tb\r\n");

  testing::ScriptedDialogs dialogs;
  testing::RecordingLauncher launcher;
  DesktopExternalEditor editor({.dialogs = dialogs, .launcher = launcher, .createExcel = {}},
                               systemTemp.path());
  editor.OpenReportDump(dump.string());
  ASSERT_TRUE(dialogs.messages.empty()) << dialogs.messages.front().text;
  ASSERT_EQ(launcher.opened.size(), 1u);

  const auto result = testing::RunPython(
      kSource / "tests/session/check_report_workbook.py",
      {launcher.opened[0],
       // As written, in the text format.
       "typed:A1=s:007", "typed:B1=s:5%", "typed:C1=s:1/2", "typed:D1=s:\"citat\"",
       "typed:E1=", "typed:F1=s:\xC3\x85sa", "typed:T1=s:20", "format:A1=@", "format:B1=@", "format:T1=@",
       // Excel's General conversion from column 21 on; what is no number stays text.
       "typed:U1=n:7", "format:U1=General", "typed:V1=n:0.05", "format:V1=0%", "typed:W1=s:Fl\xC3\xA4kt",
       "typed:X1=n:0.125", "format:X1=0.00%", "typed:Y1=n:-3.5", "typed:Z1=s:\"7\"",
       // Two TABs in a row leave an empty column.
       "typed:A2=s:a", "typed:B2=", "typed:C2=s:b"});
  EXPECT_EQ(result.status, 0) << result.output;
}

}  // namespace
}  // namespace sw::session
