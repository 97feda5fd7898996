#pragma once
// The session a command runs: the user's settings (read-only, or with some values fixed for the run),
// messages on stderr, the system's process launcher and start log. Every command goes through one.
#include <iosfwd>
#include <memory>

#include "base/environment.h"
#include "base/process_launcher.h"
#include "cadenv/registry.h"
#include "cli/console_dialogs.h"
#include "session/session.h"
#include "settings/overlay_settings.h"
#include "settings/settings.h"
#include "settings/start_log.h"

namespace sw::cli {

struct CliSessionOptions {
  bool answerYes = false;        // --yes
  bool readOnly = false;         // the settings are only read
  bool quietPageLayout = false;  // the page layout's notices are not told
  bool excel = false;            // generation drives Excel itself (--engine excel)
};

class CliSession {
 public:
  // Over the user's settings store as the command opened it.
  CliSession(std::ostream& err, CliSessionOptions options, cadenv::Registry& registry,
             settings::Settings& stored, const base::Environment& environment);

  settings::OverlaySettings& Settings() { return overlay_; }
  ConsoleDialogs& Dialogs() { return dialogs_; }
  base::ProcessLauncher& Launcher() { return *launcher_; }
  session::Session& Session() { return session_; }

 private:
  settings::OverlaySettings overlay_;
  ConsoleDialogs dialogs_;
  std::unique_ptr<base::ProcessLauncher> launcher_;
  settings::StartLog startLog_;
  session::Session session_;
};

}  // namespace sw::cli
