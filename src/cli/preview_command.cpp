#include "cli/preview_command.h"

#include <CLI/CLI.hpp>

#include <iostream>

#include "app/overlay_settings.h"
#include "app/settings.h"
#include "cadenv/registry.h"
#include "cli/console_dialogs.h"
#include "cli/table_output.h"
#include "report/preview_loader.h"
#include "report/report_table.h"

namespace sw::cli {

void AddPreviewCommand(CLI::App& app, PreviewOptions& options) {
  CLI::App* command = app.add_subcommand("preview", "Load a report dump as the preview does and print it");
  command->add_option("DUMP", options.dump, "The report dump (text file written by VOLTARIS)")->required();
  auto* json = command->add_flag("--json", options.json, "Print the table as one JSON object");
  auto* summary = command->add_flag("--summary", options.summary, "Print only rows, columns and placements");
  json->excludes(summary);
  command->add_option("--include-empty-rows", options.includeEmptyRows,
                      "Keep empty rows (1) or remove them (0) for this run; default: the stored setting")
      ->check(CLI::IsMember({"0", "1"}));
  command->add_option("--slash-two", options.slashTwo,
                      "Keep \"/2\" endings (1) or remove them (0) for this run; default: the stored setting")
      ->check(CLI::IsMember({"0", "1"}));
}

int RunPreview(const PreviewOptions& options, std::ostream& out, std::ostream& err) {
  auto registry = cadenv::OpenUserRegistry();
  app::RegistrySettings stored(*registry);
  app::OverlaySettings settings(stored);
  if (options.includeEmptyRows) settings.Override("IncludeEmptyRows", *options.includeEmptyRows);
  if (options.slashTwo) settings.Override("UseSlashTwo", *options.slashTwo);

  ConsoleDialogs dialogs(err, /*answerYes=*/false);
  report::ReportTable table;
  report::PreviewContext context{.dumpPath = options.dump, .settings = settings, .dialogs = dialogs,
                                 .layoutColumns = {}, .reloadTemplateLayout = {}, .showPageBreaks = {}};
  report::PreviewVoltDump(table, context);
  if (dialogs.MessagesShown() > 0) return 1;

  if (options.json) {
    WriteRowsAsJson(out, table);
  } else if (options.summary) {
    WriteSummary(out, Summarize(table));
  } else {
    WriteRowsAsText(out, table);
  }
  return out.good() ? 0 : 1;
}

}  // namespace sw::cli
