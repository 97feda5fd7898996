#pragma once
// The one routine that appends a row to the report table, shared by the dump reader and the grid code.
#include <span>
#include <string_view>

#include "report/colours.h"
#include "report/report_table.h"

namespace sw::report {

// Writes `fields` as row `row` (normally Rows(), so the row is appended) and returns the row count,
// which callers take as the next row number. The column count grows only when the fields' upper bound
// is strictly greater than it: a line with exactly Cols()+1 fields loses its last field, as the grid
// always did (later code reads the table with that quirk in place). Every field is trimmed of spaces;
// cells (row, 0) .. (row, Cols()-1) get `backColour`.
int AddGridRow(ReportTable& table, std::span<const std::string_view> fields, int row, Colour backColour);

}  // namespace sw::report
