#include "report/add_grid_row.h"

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

#include "base/strings.h"

namespace sw::report {

int AddGridRow(ReportTable& table, std::span<const std::string_view> fields, int row, Colour backColour) {
  const auto upperBound = static_cast<long long>(fields.size()) - 1;
  if (upperBound > table.Cols())
    table.SetCols(static_cast<int>(std::min<long long>(upperBound, INT_MAX - 1) + 1));
  table.SetRows(row + 1);

  const std::size_t written = std::min(fields.size(), static_cast<std::size_t>(table.Cols()));
  // Dump lines rarely have more than a dozen fields; those fit on the stack.
  std::array<std::string_view, 32> small;
  std::vector<std::string_view> large;
  std::span<std::string_view> trimmed;
  if (written <= small.size()) {
    trimmed = std::span(small).first(written);
  } else {
    large.resize(written);
    trimmed = large;
  }
  for (std::size_t i = 0; i < written; ++i) trimmed[i] = base::TrimSpaces(fields[i]);
  table.SetRowTexts(row, trimmed);

  table.SetRowBackColour(row, 0, table.Cols() - 1, backColour);
  return table.Rows();
}

}  // namespace sw::report
