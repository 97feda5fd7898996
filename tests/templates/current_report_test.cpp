#include "templates/current_report.h"

#include <gtest/gtest.h>

#include "fake_environment.h"
#include "memory_settings.h"
#include "scripted_dialogs.h"
#include "temp_dir.h"
#include "templates/template_list.h"

namespace sw::templates {
namespace {

using Items = std::vector<std::string>;

TEST(CurrentReportTest, ReadsTheCadIniInTheWindowsFolder) {
  testing::TempDir windir;
  windir.Write("voltaris.ini",
               "[Other]\nREPORT_ID=NO\n[CurReport]\nreport_id=PANEL\nREPORT_FIRST=12\nREPORT_ID=FBLTAY\nX\n");
  const testing::FakeEnvironment environment{{"windir", windir.path().string()}};
  std::vector<std::string> log;
  const auto report = ReadCurrentReport(environment, [&](std::string_view line) { log.emplace_back(line); });
  EXPECT_EQ(report.reportId, "FBLTAY");  // the last of equal keys
  EXPECT_EQ(report.first, "12");
  EXPECT_EQ(report.sheetNumberItems, (Items{"12", "012", "0012", "00012", "000012"}));
  EXPECT_EQ(log, Items{"VOLTARIS.INI successfully processed."});
}

TEST(CurrentReportTest, MissingFileLeavesTheIdentifierEmpty) {
  testing::TempDir windir;
  for (const auto& environment :
       {testing::FakeEnvironment{{"windir", windir.path().string()}}, testing::FakeEnvironment{}}) {
    std::vector<std::string> log;
    const auto report =
        ReadCurrentReport(environment, [&](std::string_view line) { log.emplace_back(line); });
    EXPECT_EQ(report.reportId, "");
    EXPECT_EQ(report.sheetNumberItems, (Items{"", "0", "00", "000", "0000", "00000", "000000"}));
    EXPECT_EQ(log, Items{"VOLTARIS.INI not found"});
  }
}

TEST(CurrentReportTest, SheetNumberItemsPadToSixCharacters) {
  EXPECT_EQ(SheetNumberItems("7"), (Items{"7", "07", "007", "0007", "00007", "000007"}));
  EXPECT_EQ(SheetNumberItems("123456"), Items{"123456"});
  EXPECT_TRUE(SheetNumberItems("1234567").empty());
}

TEST(TemplateListTest, BaseNameEndsAtTheLastXl) {
  EXPECT_EQ(TemplateBaseName("panel.xlsx"), "PANEL");
  EXPECT_EQ(TemplateBaseName("PLAN.XLSX.BAK.xls"), "PLAN.XLSX.BAK");
  EXPECT_EQ(TemplateBaseName("a.Xl"), "A");
  EXPECT_EQ(TemplateBaseName("ingen"), "INGEN");
}

TEST(TemplateListTest, PickerSelectsTheLastMatchAndColoursTheResult) {
  struct Case {
    Items files;
    const char* reportId;
    int selected;
    std::uint32_t colour;
    bool labelShown;
  };
  for (const auto& c : std::vector<Case>{
           {{"Other.xls", "panel.xlsx"}, "PANEL", 1, kPickerLightYellow, false},
           {{"A.XLS", "A.XLSM", "B.xls"}, "a", 1, kPickerLightYellow, false},
           {{"Other.xls"}, "PANEL", -1, kPickerLightRed, true},
           {{}, "PANEL", -1, kPickerLightRed, true},
       }) {
    TemplatePicker picker;
    FillTemplatePicker(c.files, c.reportId, picker);
    EXPECT_EQ(picker.items, c.files);
    EXPECT_EQ(picker.selected, c.selected) << c.reportId;
    EXPECT_EQ(picker.text, c.selected >= 0 ? c.files[static_cast<std::size_t>(c.selected)] : "");
    EXPECT_EQ(picker.backColour, c.colour);
    EXPECT_EQ(picker.errorLabelVisible, c.labelShown);
    if (c.labelShown) {
      EXPECT_EQ(picker.errorLabel, "Ingen mall matchar senaste rapport. (PANEL)");
    }
  }
  TemplatePicker picker;
  FillTemplatePicker({"x.xls"}, "", picker);
  EXPECT_EQ(picker.errorLabel, "Ingen mall matchar senaste rapport. ()");
  EXPECT_EQ(kPickerLightRed, 0x00C0C0FFu);
  EXPECT_EQ(kPickerLightYellow, 0x00C0FFFFu);
}

TEST(TemplateListTest, ListsWorkbooksOfAnExistingFolder) {
  testing::TempDir dir;
  for (const char* name : {"b.XLSM", "a.xlsx", "C.Xls", "c.ini", "d.xlsb", "e.txt"}) dir.Write(name, "");
  TemplatePicker picker;
  picker.text = "unchanged";
  EXPECT_FALSE(ListTemplates(dir.path().string() + "\\saknas", "A", picker));
  EXPECT_EQ(picker.text, "unchanged");
  ASSERT_TRUE(ListTemplates(dir.path().string(), "A", picker));
  EXPECT_EQ(picker.items, (Items{"a.xlsx", "b.XLSM", "C.Xls"}));
  EXPECT_EQ(picker.selected, 0);
}

}  // namespace
}  // namespace sw::templates
