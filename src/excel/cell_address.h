#pragma once
// A1-style cell addresses as Excel writes them in files and formulas.
#include <optional>
#include <string>
#include <string_view>

namespace sw::excel {

struct CellAddress {
  int row = 0;     // 1-based
  int column = 0;  // 1-based
};

// "B5", "$B$5" or "b5"; nothing when it is not a cell inside Excel's grid.
std::optional<CellAddress> ParseCellAddress(std::string_view text);
std::string ColumnName(int column);  // 1 -> "A", 27 -> "AA"
std::string FormatCellAddress(int row, int column);

}  // namespace sw::excel
