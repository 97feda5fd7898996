#include "excel/cell_blocks.h"

#include <gtest/gtest.h>

namespace sw::excel {
namespace {

std::set<std::pair<int, int>> Covered(const std::vector<CellBlock>& blocks) {
  std::set<std::pair<int, int>> cells;
  for (const auto& block : blocks) {
    for (int row = block.firstRow; row <= block.lastRow; ++row) {
      for (int column = block.firstColumn; column <= block.lastColumn; ++column) {
        EXPECT_TRUE(cells.emplace(row, column).second) << "cell covered twice: " << row << "," << column;
      }
    }
  }
  return cells;
}

TEST(CellBlocksTest, ASkippedColumnSplitsThePageIntoTwoBlocks) {
  // A page of three rows in columns A, B and D (C is a field the template keeps), with the page
  // number cells F1:F2 and the placement in B2.
  std::set<std::pair<int, int>> cells = {{1, 6}, {2, 6}, {2, 2}};
  for (int row = 10; row <= 12; ++row) {
    for (const int column : {1, 2, 4}) cells.emplace(row, column);
  }
  const auto blocks = CoverWithBlocks(cells);
  ASSERT_EQ(blocks.size(), 4u);
  EXPECT_EQ(Covered(blocks), cells);
  EXPECT_EQ(blocks[0].firstRow, 1);
  EXPECT_EQ(blocks[0].lastRow, 2);
  EXPECT_EQ(blocks[0].firstColumn, 6);
  EXPECT_EQ(blocks[2].firstRow, 10);
  EXPECT_EQ(blocks[2].lastRow, 12);
  EXPECT_EQ(blocks[2].lastColumn, 2);
  EXPECT_EQ(blocks[3].firstColumn, 4);
  EXPECT_EQ(blocks[3].lastColumn, 4);
}

TEST(CellBlocksTest, RaggedRowsNeverCoverACellThatWasNotWritten) {
  std::set<std::pair<int, int>> cells;
  for (int row = 1; row <= 40; ++row) {
    for (int column = 1; column <= 12; ++column) {
      if ((row * 7 + column * 3) % 5 != 0) cells.emplace(row, column);
    }
  }
  cells.emplace(1000, 1);
  EXPECT_EQ(Covered(CoverWithBlocks(cells)), cells);
  EXPECT_TRUE(CoverWithBlocks({}).empty());
}

TEST(CellBlocksTest, RowsWithTheSameRunStackOnlyWhenAdjacent) {
  const std::set<std::pair<int, int>> cells = {{1, 1}, {1, 2}, {2, 1}, {2, 2}, {4, 1}, {4, 2}};
  const auto blocks = CoverWithBlocks(cells);
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(blocks[0].lastRow, 2);
  EXPECT_EQ(blocks[1].firstRow, 4);
}

}  // namespace
}  // namespace sw::excel
