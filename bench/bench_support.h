#pragma once
// Stand-ins the benchmarks run the core with: no user's settings are read or changed, and no
// dialog waits for anyone.
#include <optional>
#include <string>
#include <string_view>

#include "base/dialogs.h"
#include "base/environment.h"
#include "base/process_launcher.h"
#include "settings/settings.h"

namespace sw::bench {

// Every setting reads as its default; nothing is stored.
class DefaultSettings final : public settings::Settings {
 public:
  std::string GetAppSetting(std::string_view, std::string_view defaultValue, std::string_view,
                            std::string_view) override {
    return std::string(defaultValue);
  }
  void SaveAppSetting(std::string_view, std::string_view, std::string_view) override {}
  void DeleteAppSetting(std::string_view, std::string_view) override {}
};

// Every message is answered OK and counted; every file dialog gives `target` (cancelled when unset).
class SilentDialogs final : public base::Dialogs {
 public:
  std::optional<std::string> target;
  int messages = 0;

  base::MessageAnswer ShowMessage(const base::Message&) override {
    ++messages;
    return base::MessageAnswer::kOk;
  }
  std::optional<std::string> ShowFileDialog(const base::FileDialogRequest&) override { return target; }
};

// No outside program is ever started.
class NoLauncher final : public base::ProcessLauncher {
 public:
  bool EditTextFile(std::string_view) override { return false; }
  bool OpenWithDefaultApplication(std::string_view) override { return false; }
  bool RunMinimisedAndWait(std::string_view) override { return false; }
};

// No variables at all: no CAD installation, no start log.
class EmptyEnvironment final : public base::Environment {
 public:
  std::optional<std::string> Get(std::string_view) const override { return std::nullopt; }
};

}  // namespace sw::bench
