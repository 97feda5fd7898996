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
#include "session/environment_report.h"
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

void WriteJson(std::ostream& out, const session::EnvironmentReport& found) {
  out << "{\"templateDirs\": ";
  WriteJsonList(out, found.templateDirs);
  out << ", \"templateDir\": " << JsonString(found.templateDir) << ", \"templates\": ";
  WriteJsonList(out, found.templates);
  out << ", \"template\": " << JsonString(found.templateName) << ", \"templateError\": "
      << (found.templateError ? JsonString(*found.templateError) : "null") << ", \"dumps\": ";
  WriteJsonList(out, found.dumps);
  out << ", \"dump\": " << JsonString(found.dump) << ", \"reportId\": " << JsonString(found.reportId)
      << ", \"sheetNumbers\": ";
  WriteJsonList(out, found.sheetNumbers);
  out << "}\n";
}

void WriteList(std::ostream& out, const char* heading, const std::vector<std::string>& items) {
  out << heading << " (" << items.size() << "):\n";
  for (const auto& item : items) out << "  " << item << "\n";
}

void WriteText(std::ostream& out, const session::EnvironmentReport& found) {
  WriteList(out, "Template directories", found.templateDirs);
  out << "Template directory chosen: " << found.templateDir << "\n";
  WriteList(out, "Templates", found.templates);
  if (found.templateError) {
    out << "Template matched: none - " << *found.templateError << "\n";
  } else {
    out << "Template matched: " << found.templateName << "\n";
  }
  WriteList(out, "Report dumps", found.dumps);
  out << "Report dump chosen: " << found.dump << "\n";
  out << "Current report: " << found.reportId << "\n";
  out << "Sheet numbers:";
  for (const auto& item : found.sheetNumbers) out << " " << (item.empty() ? "\"\"" : item);
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
  const session::EnvironmentReport found = session::DescribeEnvironment(window);
  if (options.json) {
    WriteJson(out, found);
  } else {
    WriteText(out, found);
  }
  return out.good() ? 0 : 1;
}

}  // namespace sw::cli
