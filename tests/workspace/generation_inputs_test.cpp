#include "app/workspace/generation_inputs.h"

#include <gtest/gtest.h>

#include "excel/recording_engine.h"
#include "fake_installation.h"
#include "generate/run_error.h"

namespace sw::workspace {
namespace {

class NoWarning final : public gen::SingleSheetWarning {
 public:
  gen::WarningAnswer Show() override { return {true, false}; }
};

class NoLauncher final : public base::ProcessLauncher {
 public:
  bool EditTextFile(std::string_view) override { return false; }
  bool OpenWithDefaultApplication(std::string_view) override { return false; }
};

class GenerationFromWorkspaceTest : public ::testing::Test {
 protected:
  GenerationFromWorkspaceTest()
      : window_({.registry = install_.registry,
                 .settings = install_.settings,
                 .environment = install_.environment,
                 .dialogs = install_.dialogs}) {
    window_.Load();
  }

  testing::FakeInstallation install_;
  Workspace window_;
};

TEST_F(GenerationFromWorkspaceTest, InputsAreWhatTheWindowShows) {
  window_.fields.entries[0].text = "Kraftverket";
  window_.ToggleSingleSheet();
  window_.TypeTemplateDirectory("C:\\Finns inte\\");  // the list still shows the earlier folder
  window_.sheetNo.SetText("007");
  window_.txtExcelFilename = "C:\\Ut\\Panel.xlsx";

  const auto inputs = GenerationInputsFrom(window_);
  EXPECT_EQ(&inputs.table, &window_.table);
  EXPECT_EQ(inputs.sheetNumberText, "007");
  EXPECT_EQ(inputs.templateFolder, "C:\\Projektmallar\\");
  EXPECT_EQ(inputs.templateFile, "PANEL.xlsx");
  EXPECT_EQ(inputs.dumpPickerText, "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt");
  EXPECT_EQ(inputs.templateDirPickerText, "C:\\Finns inte\\");
  ASSERT_EQ(inputs.fieldTexts.size(), 30u);
  EXPECT_EQ(inputs.fieldTexts[0], "Kraftverket");
  EXPECT_EQ(inputs.fieldTexts[1], "AB");
  EXPECT_TRUE(inputs.singleSheet);
  EXPECT_EQ(inputs.targetPath, "C:\\Ut\\Panel.xlsx");
}

TEST_F(GenerationFromWorkspaceTest, RunWritesTheTargetBackIntoTheWindow) {
  excel::Recording recording;
  recording.AddWorkbookFile(gen::EnginePath("C:\\Projektmallar\\\\PANEL.xlsx"), {"Blad1", "Sida"});
  NoWarning warning;
  NoLauncher launcher;
  const gen::GenerationServices services{
      .settings = install_.settings,
      .dialogs = install_.dialogs,
      .warning = warning,
      .launcher = launcher,
      .createExcel = [&] { return excel::CreateRecordingApplication(recording); },
      .programFolder = "C:\\Program\\",
      .setMousePointer = {},
      .findTopLevelWindow = {}};
  install_.dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel.xlsx"));
  window_.sheetNo.SetText("");

  gen::GenerationState state;
  const auto outcome = GenerateFromWorkspace(window_, state, services);
  EXPECT_TRUE(outcome.completed) << (install_.dialogs.messages.empty() ? ""
                                                                       : install_.dialogs.messages[0].text);
  EXPECT_EQ(window_.txtExcelFilename, "C:\\Ut\\Panel.xlsx");
  EXPECT_EQ(window_.sheetNo.text, "1");  // a blank start number becomes 1
  EXPECT_EQ(install_.settings.GetAppSetting("LastRdsDir", ""), "C:\\Projektmallar\\");
}

}  // namespace
}  // namespace sw::workspace
