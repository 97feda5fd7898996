#include "session/report_dump_dialog.h"

#include <gtest/gtest.h>

#include "memory_settings.h"
#include "scripted_dialogs.h"

namespace sw::session {
namespace {

TEST(ReportDumpDialogTest, ChoosingSavesTheFolderAndCancellingChangesNothing) {
  testing::ScriptedDialogs dialogs;
  testing::MemorySettings settings;
  dialogs.fileAnswers = {std::nullopt, std::string("C:\\Dumpar\\rapport.txt")};

  EXPECT_FALSE(ChooseReportDump(dialogs, settings, "C:\\Program\\Sheetwright").has_value());
  EXPECT_TRUE(settings.values.empty());
  ASSERT_EQ(dialogs.fileRequests.size(), 1u);
  const auto& request = dialogs.fileRequests[0];
  EXPECT_EQ(request.kind, base::FileDialogRequest::Kind::kOpen);
  EXPECT_EQ(request.title, "Välj textfil");
  EXPECT_EQ(request.filters, (std::vector<base::FileFilter>{{"(Textfil *.txt)", "*.txt"}}));
  EXPECT_EQ(request.initialFolder, "C:\\Program\\Sheetwright");
  EXPECT_EQ(request.fileName, "");
  EXPECT_TRUE(request.mustExist);

  EXPECT_EQ(ChooseReportDump(dialogs, settings, "C:\\Program\\Sheetwright"), "C:\\Dumpar\\rapport.txt");
  EXPECT_EQ(settings.GetAppSetting("DumpPath", ""), "C:\\Dumpar\\");
  ChooseReportDump(dialogs, settings, "C:\\Program\\Sheetwright");
  EXPECT_EQ(dialogs.fileRequests[2].initialFolder, "C:\\Dumpar\\");
}

}  // namespace
}  // namespace sw::session
