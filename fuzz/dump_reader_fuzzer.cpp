// Any bytes as a report dump: reading and both clean-ups must neither crash nor hang, and the table
// must keep its shape (heading row, at least one column, at most two rows per line plus the blank one).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "report/cleanup.h"
#include "report/dump_reader.h"
#include "report/report_table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  sw::report::ReportTable table;
  // A wider table from an earlier load changes which fields find a column.
  if (size > 0 && data[0] < 8) table.SetCols(data[0] + 1);

  const auto result = sw::report::LoadDumpText(table, bytes);
  if (table.Rows() < 1 || table.Cols() < 1) std::abort();
  if (table.Rows() > result.lineCount + 2) std::abort();
  for (int row = 1; row < table.Rows(); ++row) (void)table.ClassOf(row);

  const sw::report::ReportTable asRead = table;
  sw::report::CleanupSlashTwo(table);
  for (int row = 1; row < table.Rows(); ++row) {
    const auto before = asRead.RowTexts(row);
    const auto after = table.RowTexts(row);
    for (std::size_t col = 0; col < before.size(); ++col) {
      const std::string_view now = col < after.size() ? after[col] : std::string_view();
      const bool cut = col > 0 && before[col].ends_with("/2");
      if (now != before[col].substr(0, before[col].size() - (cut ? 2 : 0))) std::abort();
    }
  }
  const int rowsBefore = table.Rows();
  sw::report::CleanupEmptyRows(table);
  for (int row = 1; row < table.Rows(); ++row) {
    if (table.IsRowBlank(row)) std::abort();
  }
  if (table.Rows() > rowsBefore) std::abort();

  // The operations the preview and the export fix-up use next.
  table.SetCols(table.Cols() + 1);
  table.MoveColumn(table.Cols() - 1, 0);
  table.InsertRow(1);
  table.RemoveRow(table.Rows() - 1);
  return 0;
}
