#pragma once
// "Återställ menyer till standard...": after the user agrees, the window closes (saving as it always
// does), the stored toolbar layout is forgotten, the registration file "Init.reg" shipped beside the
// program writes the standard look into the settings, and the window opens again from there.
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/dialogs.h"
#include "base/process_launcher.h"
#include "settings/settings.h"

namespace sw::session {

inline constexpr std::string_view kDefaultsFileName = "Init.reg";

// "<programFolder>\Init.reg" as Windows writes it.
std::string DefaultsFilePath(std::string_view programFolder);

// Asks "Ska programmets färger och menyer återställas till standardutseendet?" ("Återställning",
// Yes/No). The defaults file's path when the answer is Yes and the file exists; nothing otherwise, and
// then nothing else happens.
std::optional<std::string> AskResetAppearance(base::Dialogs& dialogs, std::string_view programFolder);

// Writes a registration file's settings into the store the program reads.
class DefaultsMerger {
 public:
  virtual ~DefaultsMerger() = default;
  // `regFile` is the path as the program builds it (Windows text). False when it could not be merged.
  virtual bool Merge(std::string_view regFile) = 0;
};

// Windows: "REGEDIT /s <file>", minimised, waited for, so the settings are in place before the
// window reads them again.
class RegeditDefaultsMerger final : public DefaultsMerger {
 public:
  explicit RegeditDefaultsMerger(base::ProcessLauncher& launcher) : launcher_(launcher) {}
  bool Merge(std::string_view regFile) override;

 private:
  base::ProcessLauncher& launcher_;
};

// Elsewhere there is no regedit: the program reads the file itself and saves every text value below
// the settings key (a value of a subkey in the section of that name). Values the file deletes and
// values of other types are left alone; the file is merged all or nothing.
class SettingsDefaultsMerger final : public DefaultsMerger {
 public:
  explicit SettingsDefaultsMerger(settings::Settings& settings) : settings_(settings) {}
  bool Merge(std::string_view regFile) override;

 private:
  settings::Settings& settings_;
};

// The merger of this platform.
std::unique_ptr<DefaultsMerger> CreateDefaultsMerger(base::ProcessLauncher& launcher,
                                                     settings::Settings& settings);

// The part of the reset that runs between closing and opening the window: the toolbar layout of
// `windowName` forgotten, then the defaults file merged.
bool RestoreStandardAppearance(settings::Settings& settings, DefaultsMerger& merger,
                               std::string_view windowName, std::string_view regFile);

}  // namespace sw::session
