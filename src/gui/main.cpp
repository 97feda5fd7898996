// sheetwright: the main window. No command-line arguments are interpreted (Qt's own aside).
#include <QApplication>
#include <functional>
#include <new>

#include "base/local_time_zone.h"
#include "base/memory_reuse.h"
#include "base/out_of_memory.h"
#include "base/program_folder.h"
#include "session/user_settings_file.h"
#include "gui/font_engine.h"
#include "gui/main_window.h"
#include "gui/qt_dialogs.h"
#include "gui/qt_translations.h"
#include "session/front_end.h"

namespace {

// Memory running out in whatever the window does outside its commands (which tell it themselves) ends
// that one event with the program's message, instead of ending the program.
class Application final : public QApplication {
 public:
  using QApplication::QApplication;
  std::function<void()> onOutOfMemory;

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
      if (onOutOfMemory) onOutOfMemory();
      return false;
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  sw::base::KeepFreedMemoryForReuse();
  sw::base::ReadLocalTimeZoneOnce();
  sw::gui::ChooseFontEngine();
  Application application(argc, argv);
  QApplication::setApplicationName(QString::fromUtf8(sw::base::kApplicationTitle));

  // The start-log switch is read once, before the window exists.
  const sw::settings::StartLog startLog(sw::base::ProcessEnvironment());
  sw::gui::QtDialogs dialogs;
  // A settings file that cannot be read is told once, when the window stands; the window then works
  // with the defaults and keeps nothing.
  auto settingsFile = sw::session::OpenUserSettingsFile(
      [&dialogs](const sw::base::Notice& notice) { dialogs.ShowMessage(sw::base::AsMessage(notice)); });
  auto& registry = settingsFile.registry;
  sw::settings::RegistrySettings settings(*registry);
  application.onOutOfMemory = [&dialogs] {
    dialogs.ShowMessage({sw::base::OutOfMemoryMessage("arbetet i fönstret"), "Fel",
                         sw::base::MessageIcon::kCritical, sw::base::MessageButtons::kOk});
  };
  const auto launcher = sw::base::CreateSystemProcessLauncher();
  const auto folder = sw::base::ProgramFolder().u8string();
  const std::string programFolder(folder.begin(), folder.end());
  sw::gui::InstallQtSwedishTranslation(application,
                                       sw::gui::QtTranslationFolders(QString::fromStdString(programFolder)));

  // The window opens again after restoring the standard look, from the settings that wrote.
  for (;;) {
    sw::gui::MainWindow window({.session = {.registry = *registry,
                                            .settings = settings,
                                            .environment = sw::base::ProcessEnvironment(),
                                            .dialogs = dialogs,
                                            .launcher = *launcher,
                                            .startLog = &startLog,
                                            .programFolder = programFolder}});
    dialogs.SetOwner(&window);
    window.show();
    for (const auto& notice : settingsFile.outcome.notices) dialogs.ShowMessage(sw::base::AsMessage(notice));
    settingsFile.outcome.notices.clear();
    const int status = QApplication::exec();
    dialogs.SetOwner(nullptr);
    if (!window.RestartRequested()) return status;
  }
}
