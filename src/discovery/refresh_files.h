#pragma once
// RefreshFiles' two halves: fills the template-directory picker (cboRdsDir) and the report-dump picker
// (cboVoltDump) from what the installed CAD system leaves in the registry, in its configuration files
// and in the environment, and chooses one entry in each. Nothing is cached: every run builds both
// lists anew. What choosing an entry sets off in the window (the template list refilled, the dump
// loaded) is the caller's, between and after the halves, so whatever a failed step tells is shown
// before the window moves on.
#include <string_view>

#include "base/environment.h"
#include "base/outcome.h"
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
  settings::StartLogSink startLog;  // set only while start-up logging is on
};

// Steps A to E in order: the directory list filled and one entry chosen (or none). A step that fails
// is skipped and the next one runs; the notices are its "<number> - <description>" messages with an
// exclamation icon (none for error 1004), in step order. Done::kYes when step E got through: the
// template list is to be refilled for the chosen directory (ListTemplates with the template match),
// inside step E, so a failure there is told as step E's.
base::Outcome<base::Done> FillTemplateDirectories(const DiscoverySources& sources, ComboPicker& rdsDir);

// What steps F to H chose.
enum class DumpChoice {
  kChosen,  // the dump picker's text was set: its change handling (cboVoltDump_Change) is to run
  kNone,    // nothing chosen, or step H failed
};

// Steps F to H in order, told as FillTemplateDirectories tells them.
base::Outcome<DumpChoice> FillReportDumps(const DiscoverySources& sources, ComboPicker& voltDump);

}  // namespace sw::discovery
