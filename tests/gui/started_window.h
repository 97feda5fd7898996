#pragma once
// The main window started over a fake CAD installation, with scripted dialogs, a start log in the
// installation's folder and the settings recorded in the order they are saved.
#include <QSize>
#include <memory>
#include <string>
#include <vector>

#include "fake_installation.h"
#include "recording_launcher.h"
#include "gui/main_window.h"
#include "gui/preview_grid.h"
#include "settings/start_log.h"

namespace sw::testing {

// Settings that remember the order of every save ("Section\Key" or "Key").
class RecordingSettings final : public settings::Settings {
 public:
  explicit RecordingSettings(settings::Settings& inner) : inner_(inner) {}
  std::vector<std::string> saved;

  std::string GetAppSetting(std::string_view key, std::string_view defaultValue,
                            std::string_view section = {}, std::string_view appName = {}) override {
    return inner_.GetAppSetting(key, defaultValue, section, appName);
  }
  void SaveAppSetting(std::string_view key, std::string_view value, std::string_view section = {}) override {
    saved.push_back(section.empty() ? std::string(key) : std::string(section) + "\\" + std::string(key));
    inner_.SaveAppSetting(key, value, section);
  }
  void DeleteAppSetting(std::string_view key, std::string_view section = {}) override {
    inner_.DeleteAppSetting(key, section);
  }

 private:
  settings::Settings& inner_;
};

// A real template with its INI file in place of the installation's placeholder, and a folder for results.
void WithExampleTemplate(FakeInstallation& install);

struct StartedWindow {
  // `prepare` changes the installation before the window starts; `withCadFiles` false: nothing of the
  // CAD system is installed.
  explicit StartedWindow(const std::function<void(FakeInstallation&)>& prepare = {}, bool withCadFiles = true);
  ~StartedWindow();

  // Starts the program's window again over the same installation and settings, as the next run (or
  // the restart after restoring the standard look) does; the previous window is closed first if open.
  void Reopen();

  gui::PreviewGrid* Grid() const;
  // Centre of report row `tableRow`, column `column`, in the grid's viewport.
  QPoint RowPoint(int tableRow, int column = 1) const;

  FakeInstallation install;
  testing::FakeEnvironment logSwitch{{std::string(settings::kStartLogVariable), "1"}};
  settings::StartLog log{logSwitch, install.temp.path()};
  RecordingSettings settings{install.settings};
  RecordingLauncher launcher;  // starts no program: the user is told so
  // "Init.reg" read by the program itself on every platform, so the reset is seen in `settings`.
  session::SettingsDefaultsMerger defaults{settings};
  std::vector<std::string> opened;  // workbooks handed to the desktop
  bool workbookOpens = true;        // false: no desktop program starts for them
  // The size the window gets once started; empty: the one it chose itself.
  QSize startSize{900, 600};
  std::unique_ptr<gui::MainWindow> window;
};

}  // namespace sw::testing
