// sheetwright-screenshot OUT.png [--options-dialog OPTIONS.png]: starts the main window as `sheetwright`
// does (same settings, same environment, its placement included), waits until it is painted and saves
// a picture of it, and of the options dialog over it when asked. Run offscreen by scripts/screenshot.sh
// for the README.
#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <cstdio>

#include "base/environment.h"
#include "base/process_launcher.h"
#include "base/program_folder.h"
#include "cadenv/registry.h"
#include "gui/main_window.h"
#include "gui/options_dialog_picture.h"
#include "gui/qt_dialogs.h"
#include "settings/settings.h"
#include "settings/start_log.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addPositionalArgument(QStringLiteral("OUT.png"), QStringLiteral("picture of the main window"));
  const QCommandLineOption optionsDialog(QStringLiteral("options-dialog"),
                                         QStringLiteral("also a picture of the options dialog"),
                                         QStringLiteral("OPTIONS.png"));
  parser.addOption(optionsDialog);
  parser.process(application);
  if (parser.positionalArguments().size() != 1) {
    std::fprintf(stderr, "usage: sheetwright-screenshot OUT.png [--options-dialog OPTIONS.png]\n");
    return 2;
  }
  const QString windowPicture = parser.positionalArguments().front();

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
    status = window.grab().save(windowPicture) ? 0 : 1;
    if (status == 0 && parser.isSet(optionsDialog)) {
      status = sw::gui::SaveOptionsDialogPicture(window, settings, parser.value(optionsDialog)) ? 0 : 1;
    }
    QApplication::quit();
  });
  QApplication::exec();
  return status;
}
