#include "preview/preview_edits.h"

#include "base/system_colours.h"

namespace sw::preview {
namespace {

bool IsGreen(const report::ReportTable& table, int row) {
  return table.BackColour(row, 0) == report::kTitleGreen;
}

// Column 0 as an ordinary row has it: the grid's default or the window background a reset leaves.
bool IsPlain(const report::ReportTable& table, int row) {
  const auto colour = table.BackColour(row, 0);
  return colour == base::kSystemWindowBackground || colour == report::kDefaultBack;
}

}  // namespace

bool ShowsPreviewPopup(int button, int currentRow) {
  return button == 2 && currentRow >= 1;
}

std::array<PopupCommand, 3> PreviewPopupCommands(const report::ReportTable& table, int currentRow,
                                                 int pointerY, int headingHeight) {
  const bool below = pointerY > headingHeight;
  const bool green = IsGreen(table, currentRow);
  const auto name = table.Text(currentRow, 0);
  return {{
      {kCommandDeletePlacement, "&Radera placering " + std::string(name), below && green && !name.empty(),
       PreviewAction::kDeletePlacement},
      {kCommandInsertManualBreak, "&Infoga manuell sidbrytning här",
       below && !IsGreen(table, currentRow - 1) && IsPlain(table, currentRow),
       PreviewAction::kInsertManualBreak},
      {kCommandRemoveManualBreak, "Ta &bort manuell sidbrytning", below && green && name.empty(),
       PreviewAction::kRemoveManualBreak},
  }};
}

PreviewAction DoubleClickAction(const report::ReportTable& table, int currentRow) {
  if (currentRow < 1) return PreviewAction::kNone;
  const bool green = IsGreen(table, currentRow);
  const bool named = !table.Text(currentRow, 0).empty();
  if (green && named) return PreviewAction::kDeletePlacement;
  if (IsPlain(table, currentRow) && !IsGreen(table, currentRow - 1)) return PreviewAction::kInsertManualBreak;
  if (green && !named) return PreviewAction::kRemoveManualBreak;
  return PreviewAction::kNone;
}

void DeletePlacement(report::ReportTable& table, int row) {
  if (row < 1 || row >= table.Rows()) return;
  table.RemoveRow(row);
  while (row > 0 && row < table.Rows() - 1 && table.Text(row, 0).empty()) table.RemoveRow(row);
  if (row == table.Rows() - 1) table.RemoveRow(row);
}

void InsertManualBreak(report::ReportTable& table, int row, const std::function<void()>& showPageBreaks) {
  if (row < 1 || row > table.Rows()) return;
  table.InsertRow(row);
  table.SetRowBackColour(row, 0, table.Cols() - 1, report::kTitleGreen);
  if (showPageBreaks) showPageBreaks();
}

void RemoveManualBreak(report::ReportTable& table, int row, const std::function<void()>& showPageBreaks) {
  if (row < 1 || row >= table.Rows()) return;
  table.RemoveRow(row);
  if (showPageBreaks) showPageBreaks();
}

void RunPreviewAction(report::ReportTable& table, int row, PreviewAction action,
                      const std::function<void()>& showPageBreaks) {
  switch (action) {
    case PreviewAction::kDeletePlacement:
      DeletePlacement(table, row);
      break;
    case PreviewAction::kInsertManualBreak:
      InsertManualBreak(table, row, showPageBreaks);
      break;
    case PreviewAction::kRemoveManualBreak:
      RemoveManualBreak(table, row, showPageBreaks);
      break;
    case PreviewAction::kNone:
      break;
  }
}

}  // namespace sw::preview
