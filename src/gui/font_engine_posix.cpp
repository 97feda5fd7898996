#include "gui/font_engine.h"

namespace sw::gui {

// Linux: Qt's platform plugins pick their font engine themselves.
void ChooseFontEngine() {}

}  // namespace sw::gui
