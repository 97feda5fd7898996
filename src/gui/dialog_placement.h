#pragma once
// A dialog's placement kept in the settings under its window name (frmOptions, frmWarning), in twips
// as the main window keeps its own. A restored size is never smaller than the dialog's default; a
// dialog without a remembered placement opens centred over its owner. Whatever is restored is kept on
// the screens there are now.
#include <QRect>
#include <string_view>

#include "session/front_end.h"

class QWidget;

namespace sw::gui {

struct DefaultSize {
  float height = 0;  // twips
  float width = 0;   // twips
};

void RestoreDialogPlacement(QWidget& dialog, settings::Settings& settings, std::string_view windowName,
                            DefaultSize defaultSize);
void SaveDialogPlacement(const QWidget& dialog, settings::Settings& settings, std::string_view windowName);

// The part of the screen that `frame` is on (most of it, else its centre) that windows may use: the
// primary screen's when `frame` is on none.
QRect AvailableAreaFor(const QRect& frame);
// `frame` shrunk to `area` (never below `minimum`) and moved into it.
QRect FitInto(QRect frame, const QRect& area, const QSize& minimum = {});
// Moves `dialog` (at its current size) to the centre of `owner`'s window, or of the screen without one,
// within the screen's available area.
void CentreOver(QWidget& dialog, const QWidget* owner);

}  // namespace sw::gui
