#pragma once
// The user's edits of the preview: deleting a placement and inserting or removing a manual page break,
// from the grid's popup (commands 951–953) or by double-clicking a row.
#include <array>
#include <functional>
#include <string>

#include "report/report_table.h"

namespace sw::preview {

enum class PreviewAction { kNone, kDeletePlacement, kInsertManualBreak, kRemoveManualBreak };

inline constexpr int kCommandDeletePlacement = 951;
inline constexpr int kCommandInsertManualBreak = 952;
inline constexpr int kCommandRemoveManualBreak = 953;

struct PopupCommand {
  int id = 0;
  std::string caption;
  bool enabled = false;
  PreviewAction action = PreviewAction::kNone;
};

// The popup appears for the right button (2) while the current row is 1 or more.
bool ShowsPreviewPopup(int button, int currentRow);

// The three popup entries for `currentRow`. An entry can be enabled only when the pointer is below
// the heading row (pointerY strictly greater than the heading row's height).
std::array<PopupCommand, 3> PreviewPopupCommands(const report::ReportTable& table, int currentRow,
                                                 int pointerY, int headingHeight);

// What a double-click on `currentRow` does (the first rule that applies; kNone above row 1).
PreviewAction DoubleClickAction(const report::ReportTable& table, int currentRow);

// Removes the placement starting at `row` (its head and the rows below it without column-0 text). When
// that reaches the table's last row, the row then last goes too, whatever it holds: kept as the
// program always did. Marks are not redrawn.
void DeletePlacement(report::ReportTable& table, int row);

// Inserts an empty green row at `row` and redraws the marks with `showPageBreaks`.
void InsertManualBreak(report::ReportTable& table, int row, const std::function<void()>& showPageBreaks);

// Removes the row and redraws the marks with `showPageBreaks`.
void RemoveManualBreak(report::ReportTable& table, int row, const std::function<void()>& showPageBreaks);

// Runs one of the actions above on `row`.
void RunPreviewAction(report::ReportTable& table, int row, PreviewAction action,
                      const std::function<void()>& showPageBreaks);

}  // namespace sw::preview
