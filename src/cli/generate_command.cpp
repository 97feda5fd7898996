#include "cli/generate_command.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "base/environment.h"
#include "base/outcome.h"
#include "base/strings.h"
#include "base/windows_path.h"
#include "cadenv/registry.h"
#include "cli/cli_session.h"
#include "cli/console_dialogs.h"
#include "cli/file_name_option.h"
#include "cli/user_settings.h"
#include "settings/settings.h"
#include "templates/field_panel.h"

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
      value.index >= templates::kFieldCount) {
    return std::nullopt;
  }
  value.text = std::string(argument.substr(equals + 1));
  return value;
}

// What is wrong with a --field argument, in the program's words; empty when nothing is.
std::string FieldValueProblem(std::string_view argument) {
  if (ParseFieldValue(argument)) return {};
  const auto equals = argument.find('=');
  if (equals == std::string_view::npos || equals == 0) {
    return "\"" + std::string(argument) + "\" ska skrivas N=TEXT, där N är textens nummer (0 till 29).";
  }
  return "Text nummer " + std::string(argument.substr(0, equals)) +
         " finns inte; de gemensamma texterna har nummer 0 till 29.";
}

// The window's save dialog does not take a write-protected file; here such a target is replaced only
// when the user says so with --yes. Done::kNo when it is to stay, telling why.
base::Outcome<base::Done> MayReplaceReadOnlyTarget(const std::string& target, ConsoleDialogs& dialogs) {
  base::Outcome<base::Done> outcome;
  std::error_code error;
  const auto status = std::filesystem::status(base::ResolveWindowsPath(target), error);
  if (error || !std::filesystem::is_regular_file(status)) return outcome;
  constexpr auto kWritable = std::filesystem::perms::owner_write | std::filesystem::perms::group_write |
                             std::filesystem::perms::others_write;
  if ((status.permissions() & kWritable) != std::filesystem::perms::none) return outcome;
  const auto answer = dialogs.ShowMessage(
      base::Message{"Filen " + target + " är skrivskyddad.\rVill du ersätta den ändå?", "Skrivskyddad fil",
                    base::MessageIcon::kQuestion, base::MessageButtons::kYesNo});
  if (answer == base::MessageAnswer::kYes) return outcome;
  return outcome.Fail(base::Done::kNo)
      .Tell("Filen " + target + " har lämnats orörd. Ange --yes för att ersätta den.",
            base::MessageIcon::kExclamation, "Fel");
}

bool NamesAnExcelFile(std::string_view target) {
  const auto cut = target.find_last_of("\\/");
  const std::string name = base::AsciiUpper(cut == std::string_view::npos ? target : target.substr(cut + 1));
  return name.find(".XLS") != std::string::npos;
}

// The run's one session over the user's settings, opened when it is first needed: before the checks
// when the inputs are to be discovered, after them otherwise, so every message keeps its place.
class GenerateSession {
 public:
  GenerateSession(const GenerateOptions& options, std::ostream& err) : options_(options), err_(err) {}

  // Nothing when the settings could not be read; the user has been told.
  CliSession* Open() {
    if (cli_) return &*cli_;
    registry_ = OpenUserSettings(err_);
    if (!registry_) return nullptr;
    stored_.emplace(*registry_);
    // The page-break marks are drawn as the preview draws them, but quietly: the INI file's problems
    // are told once by the pairing and once more by generation's own check, not a third time here.
    cli_.emplace(err_,
                 CliSessionOptions{.answerYes = options_.yes,
                                   .readOnly = false,
                                   .quietPageLayout = true,
                                   .excel = options_.engine == "excel"},
                 *registry_, *stored_, base::ProcessEnvironment());
    return &*cli_;
  }

 private:
  const GenerateOptions& options_;
  std::ostream& err_;
  std::unique_ptr<cadenv::Registry> registry_;
  std::optional<settings::RegistrySettings> stored_;
  std::optional<CliSession> cli_;
};

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
      ->check(CLI::Validator([](const std::string& value) { return FieldValueProblem(value); }, "N=TEXT"));
  command->add_flag("--yes", options.yes, "Answer OK to the single-sheet warning");
  command
      ->add_option("--engine", options.engine,
                   "Who writes the workbooks: package (built in, the default) or excel (Microsoft Excel "
                   "through automation, Windows only; Excel is left open with the result)")
      ->check(CLI::IsMember({"package", "excel"}));
  command->add_flag("--open", options.open,
                    "Open every workbook written with the system's default application");
}

int RunGenerate(const GenerateOptions& given, std::ostream& out, std::ostream& err) {
  GenerateOptions options = given;
  GenerateSession run(options, err);
  if (options.dump.empty() || options.templateWorkbook.empty()) {
    // What the window would choose at start-up, found without loading it: the dump is loaded below,
    // once, with the template the run uses.
    auto* discovered = run.Open();
    if (discovered == nullptr) return 1;
    discovered->Session().StartWithoutLoading();
    if (options.dump.empty()) options.dump = discovered->Session().ReportDumps().text;
    if (options.templateWorkbook.empty()) options.templateWorkbook = discovered->Session().TemplatePath();
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
      err << "--field: " << FieldValueProblem(argument) << '\n';
      return 2;
    }
    fieldValues.push_back(std::move(*value));
  }
  // Paired by name alone, a template that is not there would be told as one without its INI file.
  std::error_code error;
  if (!std::filesystem::exists(base::ResolveWindowsPath(options.templateWorkbook), error)) {
    dialogs.ShowMessage(base::Message{"Hittar ej mallen " + options.templateWorkbook + ".", "Fel",
                                      base::MessageIcon::kInformation, base::MessageButtons::kOk});
    return 1;
  }
  if (!options.singleSheet) {
    const auto replace = MayReplaceReadOnlyTarget(options.target, dialogs);
    for (const auto& notice : replace.notices) dialogs.ShowMessage(base::AsMessage(notice));
    if (!replace) return 1;
  }

  auto* opened = run.Open();
  if (opened == nullptr) return 1;
  auto& cli = *opened;
  auto& session = cli.Session();
  session.UseTemplateAndDump(options.templateWorkbook, options.dump);
  for (const auto& value : fieldValues) session.SetFieldText(value.index, value.text);
  if (options.start) {
    session.SetSheetNumber(*options.start);
  } else {
    session.ReadCurrentReport();
    session.SetSheetNumber(session.FirstSheetNumber());
  }
  session.UseSingleSheet(options.singleSheet);

  cli.Dialogs().QueueFileAnswer(options.target);
  const auto result = session.Generate();
  for (const auto& written : result.workbooks) {
    // The program's own texts join folders with "\"; what is printed must be a path of this system.
    const std::string path = base::ResolveWindowsPath(written).string();
    out << path << '\n';
    if (options.open && !cli.Launcher().OpenWithDefaultApplication(path)) {
      err << "Kunde inte öppna " << path << '\n';
    }
  }
  if (!result.templateBackup.empty()) {
    err << "Mallens tidigare innehåll finns kvar i "
        << base::ResolveWindowsPath(result.templateBackup).string() << '\n';
  }
  // A run that went on past an error (a page file in use, a page number out of range) has lost pages.
  return result.Succeeded() && out.good() ? 0 : 1;
}

}  // namespace sw::cli
