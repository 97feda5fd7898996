#include "excel/cell_blocks.h"

#include <algorithm>
#include <map>

namespace sw::excel {

std::vector<CellBlock> CoverWithBlocks(const std::set<std::pair<int, int>>& cells) {
  std::vector<CellBlock> done;
  // Blocks still growing downwards, by their column run; each ends on the row above the current one.
  std::map<std::pair<int, int>, CellBlock> open;
  auto it = cells.begin();
  while (it != cells.end()) {
    const int row = it->first;
    std::map<std::pair<int, int>, CellBlock> next;
    while (it != cells.end() && it->first == row) {
      const int first = it->second;
      int last = first;
      for (++it; it != cells.end() && it->first == row && it->second == last + 1; ++it) last = it->second;
      const auto run = std::make_pair(first, last);
      const auto growing = open.find(run);
      if (growing != open.end() && growing->second.lastRow == row - 1) {
        CellBlock block = growing->second;
        block.lastRow = row;
        next.emplace(run, block);
        open.erase(growing);
      } else {
        next.emplace(run, CellBlock{row, first, row, last});
      }
    }
    for (const auto& entry : open) done.push_back(entry.second);
    open = std::move(next);
  }
  for (const auto& entry : open) done.push_back(entry.second);
  std::sort(done.begin(), done.end(), [](const CellBlock& a, const CellBlock& b) {
    return a.firstRow != b.firstRow ? a.firstRow < b.firstRow : a.firstColumn < b.firstColumn;
  });
  return done;
}

}  // namespace sw::excel
