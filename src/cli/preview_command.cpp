#include "cli/preview_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "base/environment.h"
#include "cadenv/registry.h"
#include "cli/console_dialogs.h"
#include "cli/file_name_option.h"
#include "cli/table_output.h"
#include "cli/template_path.h"
#include "cli/user_settings.h"
#include "generate/page_count.h"
#include "preview/export_fixup.h"
#include "preview/preview_page_breaks.h"
#include "report/preview_loader.h"
#include "report/report_table.h"
#include "settings/overlay_settings.h"
#include "settings/settings.h"
#include "templates/current_report.h"
#include "templates/field_panel.h"
#include "templates/template_definition.h"
#include "templates/template_ini.h"

namespace sw::cli {

void AddPreviewCommand(CLI::App& app, PreviewOptions& options) {
  CLI::App* command = app.add_subcommand("preview", "Load a report dump as the preview does and print it");
  command->add_option("DUMP", options.dump, "The report dump (text file written by VOLTARIS)")
      ->required()
      ->check(NotEmptyFileName());
  command
      ->add_option("--template", options.templateWorkbook,
                   "Template workbook; its INI file gives the headings and the page length")
      ->check(NotEmptyFileName());
  auto* json = command->add_flag("--json", options.json, "Print the table as one JSON object");
  auto* summary = command->add_flag("--summary", options.summary, "Print only rows, columns and placements");
  json->excludes(summary);
  command->add_flag("--fix-export", options.fixExport,
                    "Insert the missing leading column of the outer connection table (asks first)");
  command->add_flag("--yes", options.yes, "Answer Yes to the program's questions");
  const auto zeroOrOne = CLI::IsMember({"0", "1"});
  command
      ->add_option("--include-empty-rows", options.includeEmptyRows,
                   "Keep empty rows (1) or remove them (0) for this run; default: the stored setting")
      ->check(zeroOrOne);
  command
      ->add_option("--slash-two", options.slashTwo,
                   "Keep \"/2\" endings (1) or remove them (0) for this run; default: the stored setting")
      ->check(zeroOrOne);
  command
      ->add_option("--show-page-breaks", options.showPageBreaks,
                   "Draw page-break marks (1) or not (0) for this run; default: the stored setting")
      ->check(zeroOrOne);
}

namespace {

// The pages generation would make, with the page length generation reads (its INI check, which can
// differ from the preview's); nothing when that check would stop generation. Its messages are not
// shown again here: the preview has already told what is wrong with the INI file.
std::optional<int> PagesOfGeneration(const report::ReportTable& table,
                                     templates::TemplateDefinition definition) {
  std::ostream discard(nullptr);
  ConsoleDialogs quiet(discard, /*answerYes=*/false);
  if (!templates::ValidateTemplateIni(definition.IniPath, definition, quiet).Accepted()) return std::nullopt;
  return generate::CountPages(table, definition.EndRow - definition.StartRow + 1, definition.Infinite);
}

}  // namespace

int RunPreview(const PreviewOptions& options, std::ostream& out, std::ostream& err) {
  auto registry = OpenUserSettings(err);
  if (!registry) return 1;
  settings::RegistrySettings stored(*registry);
  settings::OverlaySettings settings(stored);
  if (options.includeEmptyRows) settings.Override("IncludeEmptyRows", *options.includeEmptyRows);
  if (options.slashTwo) settings.Override("UseSlashTwo", *options.slashTwo);
  if (options.showPageBreaks) settings.Override("ShowPageBreaks", *options.showPageBreaks);

  ConsoleDialogs dialogs(err, options.yes);
  report::ReportTable table;
  templates::TemplateDefinition definition;
  templates::FieldPanel fields;
  preview::PreviewPageLayout layout(definition, dialogs, settings);

  report::PreviewContext context{.dumpPath = options.dump,
                                 .settings = settings,
                                 .dialogs = dialogs,
                                 .layoutColumns = {},
                                 .reloadTemplateLayout = {},
                                 .showPageBreaks = {}};
  if (options.templateWorkbook) {
    // The main window pairs the template before it reads the dump, so the headings are in place.
    const TemplateLocation location = SplitTemplatePath(*options.templateWorkbook);
    layout.SetTemplate(location.folder, location.file);
    templates::FindIniForTemplate(location.folder, location.file, definition, fields, table, dialogs);
    context.reloadTemplateLayout = [&layout] { layout.ReloadLayout(); };
    context.showPageBreaks = [&layout, &table] { layout.ShowPageBreaks(table); };
  }
  // A dump that could not be read ends the run; the template's messages alone do not.
  const auto read = report::PreviewVoltDump(table, context);
  if (read == report::PreviewResult::kNotFound || read == report::PreviewResult::kUnreadable) return 1;

  if (options.fixExport) {
    const auto current = templates::ReadCurrentReport(base::ProcessEnvironment(), {});
    // As in the window, the template check after the repair pairs the INI file again: the inserted
    // column has pushed the headings one place right.
    const auto pairAgain = [&] {
      if (!options.templateWorkbook) return;
      const TemplateLocation location = SplitTemplatePath(*options.templateWorkbook);
      templates::FindIniForTemplate(location.folder, location.file, definition, fields, table, dialogs);
    };
    if (preview::AdjustExportFile(true, current.reportId, base::ProcessEnvironment(), dialogs, table,
                                  pairAgain)) {
      layout.ShowPageBreaks(table);
    }
  }

  if (options.json) {
    WriteRowsAsJson(out, table);
  } else if (options.summary) {
    TableSummary summary = Summarize(table);
    if (options.templateWorkbook && !definition.IniPath.empty())
      summary.pages = PagesOfGeneration(table, definition);
    WriteSummary(out, summary);
  } else {
    WriteRowsAsText(out, table);
  }
  return out.good() ? 0 : 1;
}

}  // namespace sw::cli
