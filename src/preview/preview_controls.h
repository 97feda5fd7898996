#pragma once
// The small rules of the controls around the preview: the grid's column widths, the sheet-number
// box's key filter and the keyboard behaviour of the common-text boxes.
#include <string>
#include <string_view>
#include <vector>

#include "templates/field_panel.h"
#include "templates/short_date.h"

namespace sw::preview {

// Column widths in twips after a load (before auto-sizing to the contents): column 0 at most 800; a
// single column fills the grid less 120; otherwise the other columns share what column 0 leaves,
// each rounded to the nearest whole twip (halves to the even neighbour).
std::vector<int> LayOutColumnWidths(std::vector<int> widths, int gridWidth);

// cboSheetNo's key filter: Backspace, Tab, Enter and the codes 48 to 59 (digits, ":" and ";") pass.
bool SheetNumberKeyPasses(int keyCode);

// cboSheetNo's text from anything but its keys (a paste, a drop, an input method): taken only when
// every character is one the key filter lets into the text (codes 48 to 59).
bool SheetNumberTextPasses(std::string_view text);

// A field box's text when it loses focus or gets Enter: exactly "." becomes today's date.
std::string FieldTextOnCommit(std::string_view text,
                              const templates::ShortDateSource& today = templates::TodayShortDate);

// The box Enter moves to from box `index`: the next one when it is enabled, otherwise box 0.
int NextFieldOnEnter(const templates::FieldPanel& fields, int index);

// Enter in box `index`: commits its text and returns the box that gets the focus.
int PressEnterInField(templates::FieldPanel& fields, int index,
                      const templates::ShortDateSource& today = templates::TodayShortDate);

}  // namespace sw::preview
