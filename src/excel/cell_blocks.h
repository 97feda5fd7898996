#pragma once
// Cutting a set of written cells into rectangles that hold nothing else, so each rectangle can be
// written in one call without touching a cell the caller left alone.
#include <set>
#include <utility>
#include <vector>

namespace sw::excel {

struct CellBlock {
  int firstRow = 1;
  int firstColumn = 1;
  int lastRow = 1;
  int lastColumn = 1;
};

// Rectangles that together cover exactly `cells` ((row, column) pairs), each cell once: runs of
// adjacent columns in a row, stacked while the rows below repeat the same run. Ordered by first
// row, then first column.
std::vector<CellBlock> CoverWithBlocks(const std::set<std::pair<int, int>>& cells);

}  // namespace sw::excel
