#include "session/column_fit.h"

#include <numeric>

namespace sw::session {

std::vector<int> FitColumnWidths(std::vector<int> contents, int view) {
  if (contents.empty()) return contents;
  const long total = std::accumulate(contents.begin(), contents.end(), 0L);
  if (total >= view) return contents;
  const int spare = static_cast<int>(view - total);
  // The names keep their width; the columns after them share what is left, the last taking the odd
  // pixels. A table of names alone gives its one column all of it.
  const int sharing = contents.size() > 1 ? static_cast<int>(contents.size()) - 1 : 1;
  const std::size_t first = contents.size() > 1 ? 1 : 0;
  for (std::size_t col = first; col < contents.size(); ++col) contents[col] += spare / sharing;
  contents.back() += spare % sharing;
  return contents;
}

}  // namespace sw::session
