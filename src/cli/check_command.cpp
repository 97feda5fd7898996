#include "cli/check_command.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "base/environment.h"
#include "cli/cli_session.h"
#include "cli/user_settings.h"
#include "settings/settings.h"
#include "templates/field_panel.h"
#include "templates/template_definition.h"

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
  auto registry = OpenUserSettings(err);
  if (!registry) return 1;
  settings::RegistrySettings stored(*registry);
  CliSession cli(err, {.answerYes = false, .readOnly = true}, *registry, stored, base::ProcessEnvironment());
  auto& session = cli.Session();
  if (!session.CheckTemplate(options.workbook, [&err](std::string_view warning) { err << warning << '\n'; }))
    return 1;
  WriteTemplateSummary(out, session.Definition(), session.Fields());
  return 0;
}

}  // namespace sw::cli
