#pragma once
// What the generation benchmarks share: the bundled example template filled from a dump, as the window's
// "Generera Excel-dokument" does, and the test template the engine benchmarks copy pages of.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench_support.h"
#include "generate/generate_workbook.h"
#include "report/preview_loader.h"
#include "session/template_fields.h"
#include "templates/field_panel.h"
#include "templates/template_ini.h"

namespace sw::bench {

// Fills `templateFolder`/yttre_forbindningstabell.xlsx (with its INI file) from `dump` into `target`,
// starting at sheet number 1. The number of pages, or -1 when the run ended on a message.
inline int GenerateExample(const std::string& templateFolder, const std::string& dump,
                           const std::string& target) {
  SilentDialogs dialogs;
  dialogs.target = target;
  DefaultSettings settings;
  NoLauncher launcher;
  report::ReportTable table;
  templates::TemplateDefinition definition;
  templates::FieldPanel fields;
  const auto pairing = templates::FindIniForTemplate(templateFolder, "yttre_forbindningstabell.xlsx");
  if (!pairing.outcome) return -1;
  definition.IniPath = pairing.iniPath;
  const auto common = templates::ReadCommonFields(definition.IniPath);
  if (!common.outcome || !common.outcome.notices.empty()) return -1;
  session::ApplyCommonFields(common, definition, fields, table, templates::TodayShortDate);
  if (!report::PreviewVoltDump(table, report::PreviewContext{.dumpPath = dump, .settings = settings}))
    return -1;
  generate::MessageSingleSheetWarning warning(dialogs);
  generate::GenerationServices services{settings, dialogs, warning, launcher, {}, {}, {}, {}};
  std::vector<std::string> texts;
  for (const auto& entry : fields.entries) texts.push_back(entry.text);
  generate::GenerationInputs inputs{
      table, "1", templateFolder, "yttre_forbindningstabell.xlsx", dump, templateFolder, std::move(texts),
      false, {}};
  generate::GenerationState generation;
  const auto outcome = generate::GenerateWorkbook(inputs, definition, generation, services);
  if (!outcome.completed || dialogs.messages != 0) return -1;
  return generation.sheetNumber;
}

// The test suite's title-block template, found from the build folder or through SW_TEST_DATA.
inline std::filesystem::path TitleBlockTemplate() {
  for (const std::filesystem::path candidate :
       {"tests/data/templates/title_block.xlsx", "../tests/data/templates/title_block.xlsx",
        "../../tests/data/templates/title_block.xlsx"}) {
    if (std::filesystem::exists(candidate)) return candidate;
  }
  const char* data = std::getenv("SW_TEST_DATA");
  return std::filesystem::path(data ? data : "tests/data") / "templates/title_block.xlsx";
}

}  // namespace sw::bench
