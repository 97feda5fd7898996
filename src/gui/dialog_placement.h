#pragma once
// A dialog's placement kept in the settings under its window name (frmOptions, frmWarning), in twips
// as the main window keeps its own. A restored size is never smaller than the dialog's default.
#include <string_view>

#include "settings/settings.h"

class QWidget;

namespace sw::gui {

struct DefaultSize {
  float height = 0;  // twips
  float width = 0;   // twips
};

void RestoreDialogPlacement(QWidget& dialog, settings::Settings& settings, std::string_view windowName,
                            DefaultSize defaultSize);
void SaveDialogPlacement(const QWidget& dialog, settings::Settings& settings, std::string_view windowName);

}  // namespace sw::gui
