#pragma once
// Moving about a long preview: to a placement by part of its name, and to the first row of a page as
// the page-break marks divide the rows. The window only asks and then selects the row it is given.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "report/report_table.h"

namespace sw::session {

// Where a search or a jump leads: the table row to select, or the message that tells why there is none.
struct PreviewTarget {
  std::optional<int> row;
  std::string message;  // "" when there is a row
};

// The next placement head below `afterRow` whose name (column 0) holds `text`, upper and lower case
// alike, starting over from the top after the last row. The text is trimmed of spaces; an empty text
// finds nothing.
PreviewTarget FindPlacement(const report::ReportTable& table, std::string_view text, int afterRow);

// The first row of every page: row 1, then the row after each page-break mark that has a row after it.
// No rows, no pages.
std::vector<int> PageFirstRows(const report::ReportTable& table);

// The first row of page `page` (counted from 1), or the message naming the pages there are.
PreviewTarget FirstRowOfPage(const report::ReportTable& table, int page);

}  // namespace sw::session
