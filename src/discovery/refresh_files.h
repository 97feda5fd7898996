#pragma once
// RefreshFiles: fills the template-directory picker (cboRdsDir) and the report-dump picker
// (cboVoltDump) from what the installed CAD system leaves in the registry, in its configuration files
// and in the environment, and chooses one entry in each. Nothing is cached: every run builds both
// lists anew.
#include <functional>
#include <string_view>

#include "base/dialogs.h"
#include "base/environment.h"
#include "cadenv/registry.h"
#include "discovery/combo_picker.h"
#include "settings/settings.h"
#include "settings/start_log.h"

namespace sw::discovery {

// The CAD system's machine-wide key; the walk builds every path below it with a trailing "\".
inline constexpr std::string_view kCadMachineKey = "Software\\VOLTARIS\\";
inline constexpr std::string_view kTemplateDirValue = "RDS";
inline constexpr std::string_view kUserDirValue = "USER";
inline constexpr std::string_view kDumpDirValue = "VOLTID";
inline constexpr std::string_view kCadConfigFileName = "voltaris.cfg";
inline constexpr std::string_view kReportDumpFileName = "volt_report.txt";
// Below the TEMP folder, where the CAD system writes a report it has not been told where to put.
inline constexpr std::string_view kTempDumpFolder = "\\VOLTARIS\\VOLTARIS ic\\";

struct DiscoverySources {
  cadenv::Registry& registry;
  settings::Settings& settings;  // "LastRdsDir" and "LastVoltDmp" are only read
  const base::Environment& environment;
  base::Dialogs& dialogs;           // failures of a step other than 1004
  settings::StartLogSink startLog;  // set only while start-up logging is on
};

// What choosing an entry sets off in the window.
struct RefreshHooks {
  // The template list refilled for the chosen directory (ListTemplates with the template match). Runs
  // once, after the directory is chosen (or left unchosen).
  std::function<void()> refreshTemplates;
  // The dump picker's text was set (cboVoltDump_Change): stores the choice and, unless a refresh is
  // under way, loads it.
  std::function<void()> dumpChosen;
};

// Steps A to H in order. A step that fails is skipped and the next one runs: error 1004 silently,
// any other after a message "<number> - <description>" with an exclamation icon.
void RefreshFiles(const DiscoverySources& sources, ComboPicker& rdsDir, ComboPicker& voltDump,
                  const RefreshHooks& hooks);

}  // namespace sw::discovery
