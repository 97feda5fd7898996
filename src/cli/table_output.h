#pragma once
// The three ways `preview` prints the report table.
#include <iosfwd>
#include <optional>

namespace sw::report {
class ReportTable;
}

namespace sw::cli {

// One line per report row: number, class word (head, break, mark, data) and the cells joined by " | ".
void WriteRowsAsText(std::ostream& out, const report::ReportTable& table);

// {"columns": N, "headers": [...], "rows": [{"cells": [...], "back": [...], "pictures": [...]}]}
void WriteRowsAsJson(std::ostream& out, const report::ReportTable& table);

struct TableSummary {
  int rows = 0;  // report rows (the heading row not counted)
  int columns = 0;
  int placements = 0;        // placement heads
  std::optional<int> pages;  // generation's page count, when a usable template is given
};
TableSummary Summarize(const report::ReportTable& table);
void WriteSummary(std::ostream& out, const TableSummary& summary);

}  // namespace sw::cli
