#pragma once
// The options dialog's picture for the README, taken over the started main window.
#include <QString>

#include "session/front_end.h"

namespace sw::gui {

class MainWindow;

// Opens the options dialog over `window` without running it, saves what it shows to `path` and
// closes it with nothing stored. False when the picture could not be written.
bool SaveOptionsDialogPicture(MainWindow& window, settings::Settings& settings, const QString& path);

}  // namespace sw::gui
