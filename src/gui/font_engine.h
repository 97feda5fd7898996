#pragma once
// The font engine the window draws its text with, chosen before the application object exists.

namespace sw::gui {

// Under Wine, Qt's Windows font engines leave the text of line edits and editable pickers unpainted;
// there the window takes Qt's FreeType engine instead. Elsewhere, and when the platform is chosen from
// outside (QT_QPA_PLATFORM, as the tests do), nothing changes.
void ChooseFontEngine();

}  // namespace sw::gui
