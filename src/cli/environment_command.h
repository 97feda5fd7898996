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

}  // namespace sw::cli
