#include "session/preview_navigation.h"

#include "base/strings.h"
#include "base/upper_case.h"

namespace sw::session {

PreviewTarget FindPlacement(const report::ReportTable& table, std::string_view text, int afterRow) {
  const std::string wanted = base::UpperCase(base::TrimSpaces(text));
  PreviewTarget target;
  if (!wanted.empty()) {
    const int rows = table.Rows() - 1;
    // A row out of range starts from the top, as a grid with no current row does.
    const int start = afterRow >= 1 && afterRow <= rows ? afterRow : 0;
    for (int step = 1; step <= rows; ++step) {
      const int row = (start + step - 1) % rows + 1;
      if (table.ClassOf(row) != report::RowClass::kPlacementHead) continue;
      if (base::UpperCase(table.Text(row, 0)).find(wanted) != std::string::npos) {
        target.row = row;
        return target;
      }
    }
  }
  target.message = "Hittar ingen placering som innehåller \"" + std::string(base::TrimSpaces(text)) + "\".";
  return target;
}

std::vector<int> PageFirstRows(const report::ReportTable& table) {
  std::vector<int> firsts;
  const int last = table.Rows() - 1;
  if (last < 1) return firsts;
  firsts.push_back(1);
  for (int row = 1; row < last; ++row) {
    if (table.ClassOf(row) == report::RowClass::kPageBreakMark) firsts.push_back(row + 1);
  }
  return firsts;
}

PreviewTarget FirstRowOfPage(const report::ReportTable& table, int page) {
  const std::vector<int> firsts = PageFirstRows(table);
  PreviewTarget target;
  if (firsts.empty()) {
    target.message = "Förhandsgranskningen har inga sidor.";
  } else if (page < 1 || page > static_cast<int>(firsts.size())) {
    target.message = firsts.size() == 1 ? "Förhandsgranskningen har bara sida 1."
                                        : "Ange en sida mellan 1 och " + std::to_string(firsts.size()) + ".";
  } else {
    target.row = firsts[static_cast<std::size_t>(page - 1)];
  }
  return target;
}

}  // namespace sw::session
