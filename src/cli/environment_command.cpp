#include "cli/environment_command.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <iostream>

#include "base/environment.h"
#include "base/windows_path.h"
#include "cadenv/registry.h"
#include "cli/cli_session.h"
#include "cli/console_dialogs.h"
#include "cli/json_writer.h"
#include "cli/user_settings.h"
#include "settings/settings.h"
#include "settings/start_log.h"

namespace sw::cli {
namespace {

bool MapDrives(const std::vector<std::string>& drives, std::ostream& err) {
  for (const auto& drive : drives) {
    const auto equals = drive.find('=');
    if (equals != 1 || !std::isalpha(static_cast<unsigned char>(drive[0]))) {
      err << "--drive expects LETTER=FOLDER, not \"" << drive << "\"\n";
      return false;
    }
    base::WindowsPaths().MapDrive(drive[0], drive.substr(2));
  }
  return true;
}

void WriteJsonList(std::ostream& out, const std::vector<std::string>& items) {
  out << '[';
  for (std::size_t i = 0; i < items.size(); ++i) out << (i ? ", " : "") << JsonString(items[i]);
  out << ']';
}

void WriteJson(std::ostream& out, const session::Session& window) {
  out << "{\"templateDirs\": ";
  WriteJsonList(out, window.TemplateDirectories().items);
  out << ", \"templateDir\": " << JsonString(window.TemplateDirectories().text) << ", \"templates\": ";
  WriteJsonList(out, window.Templates().items);
  out << ", \"template\": " << JsonString(window.Templates().text) << ", \"templateError\": "
      << (window.Templates().errorLabelVisible ? JsonString(window.Templates().errorLabel) : "null")
      << ", \"dumps\": ";
  WriteJsonList(out, window.ReportDumps().items);
  out << ", \"dump\": " << JsonString(window.ReportDumps().text)
      << ", \"reportId\": " << JsonString(window.CurrentReportId()) << ", \"sheetNumbers\": ";
  WriteJsonList(out, window.SheetNumbers().items);
  out << "}\n";
}

void WriteList(std::ostream& out, const char* heading, const std::vector<std::string>& items) {
  out << heading << " (" << items.size() << "):\n";
  for (const auto& item : items) out << "  " << item << "\n";
}

void WriteText(std::ostream& out, const session::Session& window) {
  WriteList(out, "Template directories", window.TemplateDirectories().items);
  out << "Template directory chosen: " << window.TemplateDirectories().text << "\n";
  WriteList(out, "Templates", window.Templates().items);
  if (window.Templates().errorLabelVisible) {
    out << "Template matched: none - " << window.Templates().errorLabel << "\n";
  } else {
    out << "Template matched: " << window.Templates().text << "\n";
  }
  WriteList(out, "Report dumps", window.ReportDumps().items);
  out << "Report dump chosen: " << window.ReportDumps().text << "\n";
  out << "Current report: " << window.CurrentReportId() << "\n";
  out << "Sheet numbers:";
  for (const auto& item : window.SheetNumbers().items) out << " " << (item.empty() ? "\"\"" : item);
  out << "\n";
}

}  // namespace

void AddEnvironmentCommand(CLI::App& app, EnvironmentOptions& options) {
  CLI::App* command = app.add_subcommand(
      "environment", "Show the template directories, templates and report dumps the main window would find");
  command->add_flag("--json", options.json, "Print one JSON object");
  command->add_option("--drive", options.drives,
                      "LETTER=FOLDER: read Windows paths on that drive below FOLDER (repeatable)");
}

int RunEnvironment(const EnvironmentOptions& options, std::ostream& out, std::ostream& err) {
  auto registry = OpenUserSettings(err);
  if (!registry) return 1;
  settings::RegistrySettings settings(*registry);
  return RunEnvironmentWith(options, *registry, settings, base::ProcessEnvironment(), out, err);
}

int RunEnvironmentWith(const EnvironmentOptions& options, cadenv::Registry& registry,
                       settings::Settings& settings, const base::Environment& environment, std::ostream& out,
                       std::ostream& err) {
  if (!MapDrives(options.drives, err)) return 2;
  CliSession cli(err, {.answerYes = false, .readOnly = true}, registry, settings, environment);
  auto& window = cli.Session();
  window.Start();
  if (options.json) {
    WriteJson(out, window);
  } else {
    WriteText(out, window);
  }
  return out.good() ? 0 : 1;
}

}  // namespace sw::cli
