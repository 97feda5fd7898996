#include "cli/table_output.h"

#include <cstdio>
#include <ostream>

#include "cli/json_writer.h"
#include "report/report_table.h"

namespace sw::cli {

using report::CellPicture;
using report::ReportTable;
using report::RowClass;

namespace {

const char* ClassWord(RowClass rowClass) {
  switch (rowClass) {
    case RowClass::kPlacementHead:
      return "head";
    case RowClass::kManualBreak:
      return "break";
    case RowClass::kPageBreakMark:
      return "mark";
    case RowClass::kOrdinary:
      break;
  }
  return "data";
}

std::string ColourHex(report::Colour colour) {
  char text[16];
  std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(colour));
  return text;
}

}  // namespace

void WriteRowsAsText(std::ostream& out, const ReportTable& table) {
  char number[16];
  for (int row = 1; row < table.Rows(); ++row) {
    std::snprintf(number, sizeof number, "%6d ", row);
    out << number;
    const std::string word = ClassWord(table.ClassOf(row));
    out << word << std::string(6 - word.size(), ' ');
    for (int col = 0; col < table.Cols(); ++col) {
      if (col > 0) out << " | ";
      out << table.Text(row, col);
    }
    out << '\n';
  }
}

void WriteRowsAsJson(std::ostream& out, const ReportTable& table) {
  out << "{\"columns\": " << table.Cols() << ", \"headers\": [";
  for (int col = 0; col < table.Cols(); ++col) {
    out << (col ? ", " : "") << JsonString(table.Text(0, col));
  }
  out << "], \"rows\": [";
  for (int row = 1; row < table.Rows(); ++row) {
    out << (row > 1 ? ",\n  " : "\n  ") << "{\"cells\": [";
    for (int col = 0; col < table.Cols(); ++col) out << (col ? ", " : "") << JsonString(table.Text(row, col));
    out << "], \"back\": [";
    for (int col = 0; col < table.Cols(); ++col) {
      out << (col ? ", " : "") << '"' << ColourHex(table.BackColour(row, col)) << '"';
    }
    out << "], \"pictures\": [";
    for (int col = 0; col < table.Cols(); ++col) {
      out << (col ? ", " : "") << (table.Picture(row, col) == CellPicture::kPageBreak ? "\"break\"" : "null");
    }
    out << "]}";
  }
  out << (table.Rows() > 1 ? "\n]}\n" : "]}\n");
}

TableSummary Summarize(const ReportTable& table) {
  TableSummary summary;
  summary.rows = table.Rows() - 1;
  summary.columns = table.Cols();
  for (int row = 1; row < table.Rows(); ++row) {
    if (table.ClassOf(row) == RowClass::kPlacementHead) ++summary.placements;
  }
  return summary;
}

void WriteSummary(std::ostream& out, const TableSummary& summary) {
  out << "rows: " << summary.rows << "\ncolumns: " << summary.columns
      << "\nplacements: " << summary.placements << '\n';
  if (summary.pages) out << "pages: " << *summary.pages << '\n';
}

}  // namespace sw::cli
