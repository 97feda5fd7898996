#include "gui/options_dialog_picture.h"

#include <QApplication>

#include "gui/main_window.h"
#include "gui/options_dialog.h"

namespace sw::gui {

bool SaveOptionsDialogPicture(MainWindow& window, settings::Settings& settings, const QString& path) {
  OptionsDialog dialog(window.Session(), settings, &window);
  dialog.show();
  QApplication::processEvents();
  const bool saved = dialog.grab().save(path);
  dialog.reject();
  return saved;
}

}  // namespace sw::gui
