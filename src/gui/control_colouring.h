#pragma once
// ColourByPrefix: a window and its plain controls take the theme's background colour shifted by
// `offset`; controls whose name says they are buttons, text boxes, pictures, pickers and the like keep
// their own (the rule is in template/colour_by_prefix.h).
#include <cstdint>

class QColor;
class QWidget;

namespace sw::gui {

// A packed 0x00BBGGRR colour value as Qt's colour.
QColor ColourOfPacked(std::int32_t packed);

// Colours `window` and, in the window's child order, each of its controls that the rule lets through.
// The controls are the widgets below `window` that carry a name, Qt's own parts of composite widgets
// ("qt_..." names) aside. When theme colour plus offset overflows or is no colour, nothing is coloured
// and false comes back: the window stays in its ordinary colours, which is all the user notices.
bool ColourByPrefix(QWidget& window, std::int32_t themeColour, std::int32_t offset);

}  // namespace sw::gui
