#pragma once
// `sheetwright-cli environment [--json]`: runs the start-up discovery as the main window does and
// prints what it found, for a user who wonders why a dump or template does not show up.
#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace sw::settings {
class Settings;
}
namespace sw::base {
class Environment;
}
namespace sw::cadenv {
class Registry;
}

namespace sw::cli {

struct EnvironmentOptions {
  bool json = false;
  // "C=/srv/c": a folder that stands in for a Windows drive when the CAD system's paths are read on
  // another system.
  std::vector<std::string> drives;
};

void AddEnvironmentCommand(CLI::App& app, EnvironmentOptions& options);

// Exit status: 0 printed, 1 the output could not be written, 2 bad usage (a --drive without "=").
int RunEnvironment(const EnvironmentOptions& options, std::ostream& out, std::ostream& err);

// The same over given stores. The settings are only read: the run leaves the remembered choices as
// they were, although the window would store the dump it chose.
int RunEnvironmentWith(const EnvironmentOptions& options, cadenv::Registry& registry,
                       settings::Settings& settings, const base::Environment& environment, std::ostream& out,
                       std::ostream& err);

// What discovery chooses at start-up, for commands run without naming a dump or template: the dump
// picker's text and the matched template's path (the template list's folder and its name), each ""
// when nothing was chosen. Messages of the run go to `err`; the settings are only read.
struct DiscoveredInputs {
  std::string dump;
  std::string templateWorkbook;
  bool settingsReadable = true;  // false: the settings file could not be read, and the user was told
};
DiscoveredInputs DiscoverInputs(std::ostream& err);

}  // namespace sw::cli
