#include "cli/preview_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "base/environment.h"
#include "cli/cli_session.h"
#include "cli/file_name_option.h"
#include "cli/table_output.h"
#include "cli/user_settings.h"
#include "report/preview_loader.h"
#include "report/report_table.h"
#include "settings/settings.h"

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

int RunPreview(const PreviewOptions& options, std::ostream& out, std::ostream& err) {
  auto registry = OpenUserSettings(err);
  if (!registry) return 1;
  settings::RegistrySettings stored(*registry);
  CliSession cli(err, {.answerYes = options.yes, .readOnly = false}, *registry, stored,
                 base::ProcessEnvironment());
  auto& settings = cli.Settings();
  if (options.includeEmptyRows) settings.Override("IncludeEmptyRows", *options.includeEmptyRows);
  if (options.slashTwo) settings.Override("UseSlashTwo", *options.slashTwo);
  if (options.showPageBreaks) settings.Override("ShowPageBreaks", *options.showPageBreaks);

  auto& session = cli.Session();
  // The main window pairs the template before it reads the dump, so the headings are in place.
  if (options.templateWorkbook) session.UseTemplateWorkbook(*options.templateWorkbook);
  // A dump that could not be read ends the run; the template's messages alone do not.
  const auto read = session.OpenReportDump(options.dump);
  if (read == report::PreviewResult::kNotFound || read == report::PreviewResult::kUnreadable) return 1;

  if (options.fixExport) {
    session.ReadCurrentReport();
    if (session.FixExport(true)) session.ShowPageBreaks();
  }

  if (options.json) {
    WriteRowsAsJson(out, session.Table());
  } else if (options.summary) {
    const auto counted = session.Summary();
    WriteSummary(out, {.rows = counted.rows,
                       .columns = session.Table().Cols(),
                       .placements = counted.placements,
                       .pages = counted.pages});
  } else {
    WriteRowsAsText(out, session.Table());
  }
  return out.good() ? 0 : 1;
}

}  // namespace sw::cli
