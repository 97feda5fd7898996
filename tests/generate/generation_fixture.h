#pragma once
// A generation run against the recording double: the template workbook "Lista.xlsx" beside the INI
// files of tests/data/generation, a report table built row by row, scripted dialogs and settings.
#include <memory>
#include <string>
#include <vector>

#include "generate/generate_workbook.h"
#include "generate/run_error.h"
#include "memory_settings.h"
#include "recording_engine.h"
#include "recording_launcher.h"
#include "report/add_grid_row.h"
#include "report/colours.h"
#include "scripted_dialogs.h"
#include "session/template_fields.h"
#include "templates/template_ini.h"

namespace sw::generate {

// Pairs the template with `iniPath` as choosing the template does: the common fields and the preview's
// headings come from it ("." is 2026-11-20). The field boxes' texts.
inline std::vector<std::string> PairTemplateIni(const std::string& iniPath,
                                                templates::TemplateDefinition& definition,
                                                report::ReportTable& table) {
  templates::FieldPanel fields;
  session::ApplyCommonFields(templates::ReadCommonFields(iniPath), definition, fields, table,
                             [] { return std::string("2026-11-20"); });
  definition.IniPath = iniPath;
  std::vector<std::string> texts;
  for (const auto& entry : fields.entries) texts.push_back(entry.text);
  return texts;
}

class FakeWarning final : public SingleSheetWarning {
 public:
  WarningAnswer answer{true, false};
  int shown = 0;
  WarningAnswer Show() override {
    ++shown;
    return answer;
  }
};

class GenerationFixture {
 public:
  static constexpr const char* kFolder = "data/generation";

  GenerationFixture() {
    recording.AddWorkbookFile(TemplateEnginePath(), {"Common", "Mall"});
    services.createExcel = [this] { return excel::CreateRecordingApplication(recording); };
    services.programFolder = "/program/";
    services.setMousePointer = [this](MousePointer pointer) { pointers.push_back(pointer); };
    dialogs.fileAnswers.push_back(std::string("/R/Lista.xlsx"));
    inputs.sheetNumberText = "1";
    inputs.templateFolder = kFolder;
    inputs.templateFile = "Lista.xlsx";
    inputs.dumpPickerText = "C:\\VOLTARIS\\volt_report.txt";
    inputs.templateDirPickerText = kFolder;
    UseIni("three_rows.ini");
  }

  static std::string TemplateEnginePath() { return EnginePath(std::string(kFolder) + "\\Lista.xlsx"); }

  // Pairs the template with `name` as choosing the template does: the common fields come from it.
  void UseIni(const std::string& name) {
    inputs.fieldTexts = PairTemplateIni(std::string(kFolder) + "\\" + name, definition, table);
  }

  // A light-green row: a placement head when `title` is not empty, else a manual page break.
  void AddTitle(std::string_view title) {
    const std::string_view fields[] = {title};
    report::AddGridRow(table, fields, table.Rows(), report::kTitleGreen);
  }
  // A data row: cable, from, (skipped), to.
  void AddData(std::string_view cable, std::string_view from, std::string_view skipped, std::string_view to) {
    const std::string_view fields[] = {"", cable, from, skipped, to};
    report::AddGridRow(table, fields, table.Rows(), report::kDefaultBack);
  }
  // One placement "+A1" with `count` rows W1 … Wn.
  void AddPlacement(std::string_view name, int first, int count) {
    AddTitle(name);
    for (int i = first; i < first + count; ++i) {
      const std::string n = std::to_string(i);
      AddData("W" + n, "X" + n, "-", "M" + n);
    }
  }

  GenerationOutcome Generate() { return GenerateWorkbook(inputs, definition, state, services); }

  std::string Setting(const std::string& key) { return settings.GetAppSetting(key, "<none>"); }
  std::vector<std::string> MessageTexts() const {
    std::vector<std::string> texts;
    for (const auto& message : dialogs.messages)
      texts.push_back(base::EffectiveTitle(message) + ": " + message.text);
    return texts;
  }

  excel::Recording recording;
  report::ReportTable table;
  testing::ScriptedDialogs dialogs;
  testing::MemorySettings settings;
  FakeWarning warning;
  testing::RecordingLauncher launcher;
  std::vector<MousePointer> pointers;
  GenerationServices services{settings, dialogs, warning, launcher, {}, {}, {}, {}};
  GenerationInputs inputs{table, {}, {}, {}, {}, {}, {}, false, {}};
  templates::TemplateDefinition definition;
  GenerationState state;
};

}  // namespace sw::generate
