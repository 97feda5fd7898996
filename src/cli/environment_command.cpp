#include "cli/environment_command.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <iostream>

#include "app/settings.h"
#include "app/start_log.h"
#include "app/workspace/workspace.h"
#include "base/environment.h"
#include "base/windows_path.h"
#include "cadenv/registry.h"
#include "cli/console_dialogs.h"
#include "cli/json_writer.h"
#include "cli/user_settings.h"

namespace sw::cli {
namespace {

// Reads through to the store, drops every write: looking must not change what the window remembers.
class ReadOnlySettings final : public app::Settings {
 public:
  explicit ReadOnlySettings(app::Settings& store) : store_(store) {}
  std::string GetAppSetting(std::string_view key, std::string_view defaultValue, std::string_view section,
                            std::string_view appName) override {
    return store_.GetAppSetting(key, defaultValue, section, appName);
  }
  void SaveAppSetting(std::string_view, std::string_view, std::string_view) override {}
  void DeleteAppSetting(std::string_view, std::string_view) override {}

 private:
  app::Settings& store_;
};

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

void WriteJson(std::ostream& out, const workspace::Workspace& window) {
  out << "{\"templateDirs\": ";
  WriteJsonList(out, window.rdsDir.items);
  out << ", \"templateDir\": " << JsonString(window.rdsDir.text) << ", \"templates\": ";
  WriteJsonList(out, window.rdsFile.items);
  out << ", \"template\": " << JsonString(window.rdsFile.text) << ", \"templateError\": "
      << (window.rdsFile.errorLabelVisible ? JsonString(window.rdsFile.errorLabel) : "null")
      << ", \"dumps\": ";
  WriteJsonList(out, window.voltDump.items);
  out << ", \"dump\": " << JsonString(window.voltDump.text)
      << ", \"reportId\": " << JsonString(window.currentReportId) << ", \"sheetNumbers\": ";
  WriteJsonList(out, window.sheetNo.items);
  out << "}\n";
}

void WriteList(std::ostream& out, const char* heading, const std::vector<std::string>& items) {
  out << heading << " (" << items.size() << "):\n";
  for (const auto& item : items) out << "  " << item << "\n";
}

void WriteText(std::ostream& out, const workspace::Workspace& window) {
  WriteList(out, "Template directories", window.rdsDir.items);
  out << "Template directory chosen: " << window.rdsDir.text << "\n";
  WriteList(out, "Templates", window.rdsFile.items);
  if (window.rdsFile.errorLabelVisible) {
    out << "Template matched: none - " << window.rdsFile.errorLabel << "\n";
  } else {
    out << "Template matched: " << window.rdsFile.text << "\n";
  }
  WriteList(out, "Report dumps", window.voltDump.items);
  out << "Report dump chosen: " << window.voltDump.text << "\n";
  out << "Current report: " << window.currentReportId << "\n";
  out << "Sheet numbers:";
  for (const auto& item : window.sheetNo.items) out << " " << (item.empty() ? "\"\"" : item);
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

DiscoveredInputs DiscoverInputs(std::ostream& err) {
  auto registry = OpenUserSettings(err);
  if (!registry) return {.dump = {}, .templateWorkbook = {}, .settingsReadable = false};
  app::RegistrySettings stored(*registry);
  ReadOnlySettings settings(stored);
  ConsoleDialogs dialogs(err, /*answerYes=*/false);
  const app::StartLog startLog(base::ProcessEnvironment());
  workspace::Workspace window({.registry = *registry,
                               .settings = settings,
                               .environment = base::ProcessEnvironment(),
                               .dialogs = dialogs,
                               .startLog = &startLog,
                               .progress = nullptr,
                               .layoutColumns = {}});
  window.Load();
  DiscoveredInputs inputs{.dump = window.voltDump.text, .templateWorkbook = {}, .settingsReadable = true};
  if (!window.rdsFile.text.empty()) {
    inputs.templateWorkbook = window.templateListFolder;
    if (!inputs.templateWorkbook.empty() && inputs.templateWorkbook.back() != '\\')
      inputs.templateWorkbook += '\\';
    inputs.templateWorkbook += window.rdsFile.text;
  }
  return inputs;
}

int RunEnvironment(const EnvironmentOptions& options, std::ostream& out, std::ostream& err) {
  auto registry = OpenUserSettings(err);
  if (!registry) return 1;
  app::RegistrySettings settings(*registry);
  return RunEnvironmentWith(options, *registry, settings, base::ProcessEnvironment(), out, err);
}

int RunEnvironmentWith(const EnvironmentOptions& options, cadenv::Registry& registry, app::Settings& settings,
                       const base::Environment& environment, std::ostream& out, std::ostream& err) {
  if (!MapDrives(options.drives, err)) return 2;
  ReadOnlySettings readOnly(settings);
  ConsoleDialogs dialogs(err, /*answerYes=*/false);
  const app::StartLog startLog(environment);
  workspace::Workspace window({.registry = registry,
                               .settings = readOnly,
                               .environment = environment,
                               .dialogs = dialogs,
                               .startLog = &startLog,
                               .progress = nullptr,
                               .layoutColumns = {}});
  window.Load();
  if (options.json) {
    WriteJson(out, window);
  } else {
    WriteText(out, window);
  }
  return out.good() ? 0 : 1;
}

}  // namespace sw::cli
