#pragma once
// How a theme looks in Qt: a widget style (Fusion for the flat looks, the classic Windows style for
// "Standard") and a palette built around the theme's command-bar colour, set for the whole program so
// that its dialogs share the look.
#include <QColor>
#include <cstdint>

#include "session/themes.h"

namespace sw::gui {

// A packed Windows colour (0x00BBGGRR) as a QColor.
QColor FromPackedColour(std::int32_t packed);

void ApplyThemeLook(const session::ThemeEntry& theme);

}  // namespace sw::gui
