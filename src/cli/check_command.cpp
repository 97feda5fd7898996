#include "cli/check_command.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "base/windows_path.h"
#include "cli/console_dialogs.h"
#include "cli/template_path.h"
#include "cli/template_workbook_check.h"
#include "report/report_table.h"
#include "templates/field_panel.h"
#include "templates/template_definition.h"
#include "templates/template_ini.h"

namespace sw::cli {

void AddCheckCommand(CLI::App& app, CheckOptions& options) {
  CLI::App* command =
      app.add_subcommand("check", "Check a template workbook and its INI file as generation does");
  command->add_option("WORKBOOK", options.workbook, "The template workbook (.xls, .xlsx or .xlsm)")
      ->required();
}

namespace {

void WriteTemplateSummary(std::ostream& out, const templates::TemplateDefinition& definition,
                          const templates::FieldPanel& fields) {
  out << "ini: " << definition.IniPath << '\n';
  out << "common sheet: " << definition.CommonSheetName << '\n';
  out << "page sheet: " << definition.TemplateSheetName << '\n';
  if (definition.Infinite) {
    out << "rows per page: dynamic (from row " << definition.StartRow << ")\n";
  } else {
    out << "rows per page: " << (definition.EndRow - definition.StartRow + 1) << " (rows "
        << definition.StartRow << " to " << definition.EndRow << ")\n";
  }
  int written = 0;
  for (auto column : definition.DataColumns) {
    if (column != templates::kFieldNotWritten) ++written;
  }
  out << "columns: " << written << " of " << definition.DataColumns.size() << " report fields written\n";
  int common = 0;
  for (const auto& entry : fields.entries) {
    if (entry.enabled) ++common;
  }
  out << "common fields: " << common << '\n';
  for (const auto& entry : fields.entries) {
    if (entry.enabled) out << "  " << entry.caption << (entry.text.empty() ? "" : " = " + entry.text) << '\n';
  }
}

}  // namespace

int RunCheck(const CheckOptions& options, std::ostream& out, std::ostream& err) {
  ConsoleDialogs dialogs(err, /*answerYes=*/false);
  templates::TemplateDefinition definition;
  templates::FieldPanel fields;
  report::ReportTable preview;
  const TemplateLocation location = SplitTemplatePath(options.workbook);
  // Pairing goes by name alone; generation also needs the workbook itself.
  if (!base::WindowsFileExists(options.workbook)) {
    dialogs.ShowMessage({"Hittar ej filen " + options.workbook + ".", "Fel", base::MessageIcon::kInformation,
                         base::MessageButtons::kOk});
    return 1;
  }
  if (!templates::FindIniForTemplate(location.folder, location.file, definition, fields, preview, dialogs))
    return 1;
  const auto validation = templates::ValidateTemplateIni(definition.IniPath, definition, dialogs);
  if (!validation.Accepted() || definition.IniError) return 1;
  WarnAboutPageLayout(definition, err);
  if (!OpenTemplateAsGenerationWould(options.workbook, definition, dialogs)) return 1;
  WriteTemplateSummary(out, definition, fields);
  return 0;
}

}  // namespace sw::cli
