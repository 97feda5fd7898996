#pragma once
// The report rows of a table as "cell|cell|..." lines (all columns), for compact expectations.
#include <string>
#include <vector>

#include "report/report_table.h"

namespace sw::report {

inline std::string RowLine(const ReportTable& table, int row) {
  std::string line;
  for (int col = 0; col < table.Cols(); ++col) {
    if (col > 0) line += '|';
    line += table.Text(row, col);
  }
  return line;
}

inline std::vector<std::string> ReportRows(const ReportTable& table) {
  std::vector<std::string> rows;
  for (int row = 1; row < table.Rows(); ++row) rows.push_back(RowLine(table, row));
  return rows;
}

// The columns of `row` painted `colour`, as a string of '1'/'0' per column.
inline std::string PaintedColumns(const ReportTable& table, int row, Colour colour) {
  std::string mask;
  for (int col = 0; col < table.Cols(); ++col) mask += table.BackColour(row, col) == colour ? '1' : '0';
  return mask;
}

}  // namespace sw::report
