// sheetwright-screenshot OUT.png: starts the main window as `sheetwright` does (same settings, same
// environment, its placement included), waits until it is painted and saves a picture of it. Run offscreen by
// scripts/screenshot.sh for the README.
#include <QApplication>
#include <QTimer>
#include <cstdio>

#include "base/environment.h"
#include "base/process_launcher.h"
#include "base/program_folder.h"
#include "cadenv/registry.h"
#include "gui/main_window.h"
#include "gui/qt_dialogs.h"
#include "settings/settings.h"
#include "settings/start_log.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: sheetwright-screenshot OUT.png\n");
    return 2;
  }
  const sw::settings::StartLog startLog(sw::base::ProcessEnvironment());
  auto registry = sw::cadenv::OpenUserRegistry();
  sw::settings::RegistrySettings settings(*registry);
  sw::gui::QtDialogs dialogs;
  const auto launcher = sw::base::CreateSystemProcessLauncher();
  sw::gui::MainWindow window({.registry = *registry,
                              .settings = settings,
                              .environment = sw::base::ProcessEnvironment(),
                              .dialogs = dialogs,
                              .launcher = *launcher,
                              .startLog = &startLog,
                              .programFolder = {},
                              .createExcel = {},
                              .openWorkbook = {}});
  window.show();
  int status = 1;
  QTimer::singleShot(500, &window, [&] {
    status = window.grab().save(QString::fromUtf8(argv[1])) ? 0 : 1;
    QApplication::quit();
  });
  QApplication::exec();
  return status;
}
