#include "report/cleanup.h"

#include <string_view>
#include <vector>

namespace sw::report {

void CleanupEmptyRows(ReportTable& table) {
  // One compacting pass: removing 200,000 rows one at a time would move the rest each time.
  table.RemoveRowsIf([&table](int row) { return table.IsRowBlank(row); });
}

void CleanupSlashTwo(ReportTable& table) {
  const int cols = table.Cols();
  for (int row = 1; row < table.Rows(); ++row) {
    // Most rows have nothing to remove: looking costs no copy of the row.
    bool any = false;
    for (int col = 1; col < cols && !any; ++col) any = table.Text(row, col).ends_with("/2");
    if (!any) continue;
    std::vector<std::string_view> cells = table.RowTexts(row);
    bool changed = false;
    for (std::size_t col = 1; col < cells.size(); ++col) {
      if (cells[col].ends_with("/2")) {
        cells[col].remove_suffix(2);
        changed = true;
      }
    }
    if (changed) table.SetRowTexts(row, cells);
  }
}

}  // namespace sw::report
