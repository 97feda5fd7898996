#include "cli/generate_command.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <iostream>

#include "app/overlay_settings.h"
#include "app/settings.h"
#include "base/environment.h"
#include "base/process_launcher.h"
#include "base/program_folder.h"
#include "base/strings.h"
#include "base/windows_path.h"
#include "cadenv/registry.h"
#include "cli/console_dialogs.h"
#include "cli/environment_command.h"
#include "cli/file_name_option.h"
#include "cli/template_path.h"
#include "cli/user_settings.h"
#include "generate/generate_workbook.h"
#include "generate/single_sheet_warning.h"
#include "report/preview_loader.h"
#include "report/report_table.h"
#include "template/current_report.h"
#include "template/field_panel.h"
#include "template/preview_page_breaks.h"
#include "template/template_definition.h"
#include "template/template_ini.h"

namespace sw::cli {
namespace {

struct FieldValue {
  int index = -1;
  std::string text;
};

// "N=TEXT" with N a field index; nothing when it is not of that form.
std::optional<FieldValue> ParseFieldValue(std::string_view argument) {
  const auto equals = argument.find('=');
  if (equals == std::string_view::npos || equals == 0) return std::nullopt;
  FieldValue value;
  const auto* first = argument.data();
  const auto* last = first + equals;
  const auto parsed = std::from_chars(first, last, value.index);
  if (parsed.ec != std::errc() || parsed.ptr != last || value.index < 0 ||
      value.index >= templ::kFieldCount) {
    return std::nullopt;
  }
  value.text = std::string(argument.substr(equals + 1));
  return value;
}

bool NamesAnExcelFile(std::string_view target) {
  const auto cut = target.find_last_of("\\/");
  const std::string name = base::AsciiUpper(cut == std::string_view::npos ? target : target.substr(cut + 1));
  return name.find(".XLS") != std::string::npos;
}

std::string DefaultStartNumber() {
  const auto current = templ::ReadCurrentReport(base::ProcessEnvironment(), {});
  if (current.first.empty() || current.sheetNumberItems.empty()) return "1";
  return current.sheetNumberItems.front();
}

}  // namespace

void AddGenerateCommand(CLI::App& app, GenerateOptions& options) {
  CLI::App* command = app.add_subcommand(
      "generate", "Fill a report template with a report dump, as \"Generera Excel-dokument\"");
  command
      ->add_option("--dump", options.dump,
                   "The report dump (text file written by VOLTARIS); "
                   "default: the one the main window chooses")
      ->check(NotEmptyFileName());
  command
      ->add_option("--template", options.templateWorkbook,
                   "Template workbook (its INI file lies beside it); "
                   "default: the one the main window matches")
      ->check(NotEmptyFileName());
  command->add_option("--out", options.target, "The workbook to create (.xls, .xlsx or .xlsm)")->required();
  command->add_option("--start", options.start,
                      "First sheet number; its length pads every page number (007 gives 007, 008, ...). "
                      "Default: the first sheet number of VOLTARIS' last report, else 1");
  command->add_flag("--single-sheet", options.singleSheet,
                    "One workbook per page: TARGET-<page>.<ext>, TARGET itself is not written");
  command
      ->add_option(
          "--field", options.fields,
          "Common text N (0 to 29, in the order of the INI's [Common] lines) set to TEXT; repeatable")
      ->type_name("N=TEXT")
      ->check(CLI::Validator(
          [](const std::string& value) {
            return ParseFieldValue(value) ? std::string() : "expected N=TEXT with N from 0 to 29";
          },
          "N=TEXT"));
  command->add_flag("--yes", options.yes, "Answer OK to the single-sheet warning");
  command->add_flag("--open", options.open,
                    "Open every workbook written with the system's default application");
}

int RunGenerate(const GenerateOptions& given, std::ostream& out, std::ostream& err) {
  GenerateOptions options = given;
  if (options.dump.empty() || options.templateWorkbook.empty()) {
    const auto discovered = DiscoverInputs(err);
    if (!discovered.settingsReadable) return 1;
    if (options.dump.empty()) options.dump = discovered.dump;
    if (options.templateWorkbook.empty()) options.templateWorkbook = discovered.templateWorkbook;
    if (options.dump.empty() || options.templateWorkbook.empty()) {
      err << "No " << (options.dump.empty() ? "report dump" : "matching template")
          << " found; see `sheetwright-cli environment` or name it with --dump/--template\n";
      return 2;
    }
  }
  ConsoleDialogs dialogs(err, options.yes);
  if (!NamesAnExcelFile(options.target)) {
    dialogs.ShowMessage(base::Message{
        "Filnamnet " + options.target + " saknar \".xls\". Ange en Excel-fil (.xls, .xlsx eller .xlsm).",
        "Fel", base::MessageIcon::kExclamation, base::MessageButtons::kOk});
    return 2;
  }
  std::vector<FieldValue> fieldValues;
  for (const auto& argument : options.fields) {
    auto value = ParseFieldValue(argument);
    if (!value) {
      err << "--field " << argument << ": expected N=TEXT with N from 0 to 29\n";
      return 2;
    }
    fieldValues.push_back(std::move(*value));
  }

  auto registry = OpenUserSettings(err);
  if (!registry) return 1;
  app::RegistrySettings stored(*registry);
  app::OverlaySettings settings(stored);

  report::ReportTable table;
  templ::TemplateDefinition definition;
  templ::FieldPanel fields;
  // The page-break marks are drawn as the preview draws them, but quietly: the INI file's problems are
  // told once by the pairing and once more by generation's own check, not a third time here.
  std::ostream discard(nullptr);
  ConsoleDialogs quiet(discard, /*answerYes=*/false);
  templ::PreviewPageLayout layout(definition, quiet, settings);
  const TemplateLocation location = SplitTemplatePath(options.templateWorkbook);
  layout.SetTemplate(location.folder, location.file);
  templ::FindIniForTemplate(location.folder, location.file, definition, fields, table, dialogs);
  report::PreviewContext context{.dumpPath = options.dump,
                                 .settings = settings,
                                 .dialogs = dialogs,
                                 .layoutColumns = {},
                                 .reloadTemplateLayout = [&layout] { layout.ReloadLayout(); },
                                 .showPageBreaks = [&layout, &table] { layout.ShowPageBreaks(table); }};
  report::PreviewVoltDump(table, context);

  for (const auto& value : fieldValues)
    fields.entries[static_cast<std::size_t>(value.index)].text = value.text;
  std::vector<std::string> fieldTexts;
  for (const auto& entry : fields.entries) fieldTexts.push_back(entry.text);

  gen::GenerationInputs inputs{table,
                               options.start.value_or(DefaultStartNumber()),
                               location.folder,
                               location.file,
                               options.dump,
                               location.folder,
                               std::move(fieldTexts),
                               options.singleSheet,
                               {}};
  dialogs.QueueFileAnswer(options.target);
  gen::MessageSingleSheetWarning warning(dialogs);
  const auto launcher = base::CreateSystemProcessLauncher();
  const auto programFolder = base::ProgramFolder().u8string();
  gen::GenerationServices services{
      settings, dialogs, warning, *launcher, {}, std::string(programFolder.begin(), programFolder.end()),
      {},       {}};
  services.mayWriteIntoTemplate = false;
  gen::GenerationState state;
  const int errorsBefore = dialogs.ErrorsShown();
  const auto outcome = gen::GenerateWorkbook(inputs, definition, state, services);

  for (const auto& written : outcome.savedFiles) {
    // The program's own texts join folders with "\"; what is printed must be a path of this system.
    const std::string path = base::ResolveWindowsPath(written).string();
    out << path << '\n';
    if (options.open && !launcher->OpenWithDefaultApplication(path)) {
      err << "Kunde inte öppna " << path << '\n';
    }
  }
  if (!outcome.templateBackup.empty()) {
    err << "Mallens tidigare innehåll finns kvar i "
        << base::ResolveWindowsPath(outcome.templateBackup).string() << '\n';
  }
  // A run that went on past an error (a page file in use, a page number out of range) has lost pages.
  const bool clean = outcome.completed && dialogs.ErrorsShown() == errorsBefore;
  return clean && out.good() ? 0 : 1;
}

}  // namespace sw::cli
