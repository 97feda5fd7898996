#include "excel/package/conditional_formats.h"

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "excel/cell_address.h"
#include "excel/package/formula_text.h"
#include "excel/package/xml_order.h"

namespace sw::excel {

namespace {

std::vector<CellBlock> ParseSqref(std::string_view sqref) {
  std::vector<CellBlock> blocks;
  std::size_t at = 0;
  while (at < sqref.size()) {
    const auto end = std::min(sqref.find(' ', at), sqref.size());
    const std::string_view item = sqref.substr(at, end - at);
    at = end + 1;
    if (item.empty()) continue;
    const auto colon = item.find(':');
    const auto first = ParseCellAddress(item.substr(0, colon));
    const auto last = colon == std::string_view::npos ? first : ParseCellAddress(item.substr(colon + 1));
    if (!first || !last) continue;
    blocks.push_back({std::min(first->row, last->row), std::min(first->column, last->column),
                      std::max(first->row, last->row), std::max(first->column, last->column)});
  }
  return blocks;
}

std::string FormatBlock(const CellBlock& block) {
  std::string text = FormatCellAddress(block.firstRow, block.firstColumn);
  if (block.lastRow != block.firstRow || block.lastColumn != block.firstColumn)
    text += ":" + FormatCellAddress(block.lastRow, block.lastColumn);
  return text;
}

bool Contains(const CellBlock& outer, const CellBlock& inner) {
  return outer.firstRow <= inner.firstRow && inner.lastRow <= outer.lastRow &&
         outer.firstColumn <= inner.firstColumn && inner.lastColumn <= outer.lastColumn;
}

// The cell rule formulas are written for: the top left corner of all the rule's cells.
std::pair<int, int> Corner(const std::vector<CellBlock>& blocks) {
  int row = INT_MAX, column = INT_MAX;
  for (const auto& block : blocks) {
    row = std::min(row, block.firstRow);
    column = std::min(column, block.firstColumn);
  }
  return {row, column};
}

// Where the part `covered` of the copied block lands in the pasted one, repeat by repeat.
std::vector<CellBlock> Landing(const CellBlock& covered, const CellBlock& from, const CellBlock& to) {
  std::vector<CellBlock> landed;
  const int height = from.lastRow - from.firstRow + 1;
  const int shift = to.firstColumn - from.firstColumn;
  const int firstColumn = std::max(covered.firstColumn + shift, to.firstColumn);
  const int lastColumn = std::min(covered.lastColumn + shift, to.lastColumn);
  if (firstColumn > lastColumn) return landed;
  const bool wholeHeight = covered.firstRow == from.firstRow && covered.lastRow == from.lastRow;
  if (wholeHeight) return {{to.firstRow, firstColumn, to.lastRow, lastColumn}};
  for (int top = to.firstRow; top <= to.lastRow; top += height) {
    const int firstRow = top + covered.firstRow - from.firstRow;
    const int lastRow = std::min(top + covered.lastRow - from.firstRow, to.lastRow);
    if (firstRow <= lastRow) landed.push_back({firstRow, firstColumn, lastRow, lastColumn});
  }
  return landed;
}

std::string JoinBlocks(const std::vector<CellBlock>& blocks) {
  std::string text;
  for (const auto& block : blocks) {
    if (!text.empty()) text += ' ';
    text += FormatBlock(block);
  }
  return text;
}

int HighestPriority(pugi::xml_node worksheet) {
  int highest = 0;
  for (const auto element : worksheet.children("conditionalFormatting")) {
    for (const auto rule : element.children("cfRule"))
      highest = std::max(highest, rule.attribute("priority").as_int());
  }
  return highest;
}

}  // namespace

void PasteConditionalFormats(const Worksheet& source, const CellBlock& from, Worksheet& target,
                             const CellBlock& to, bool sameSheet) {
  struct Carried {
    pugi::xml_node element;
    std::vector<CellBlock> ranges;
    std::vector<CellBlock> landed;
  };
  std::vector<Carried> carried;
  for (const auto element : source.root().children("conditionalFormatting")) {
    Carried entry{element, ParseSqref(element.attribute("sqref").value()), {}};
    for (const auto& range : entry.ranges) {
      const CellBlock covered{
          std::max(range.firstRow, from.firstRow), std::max(range.firstColumn, from.firstColumn),
          std::min(range.lastRow, from.lastRow), std::min(range.lastColumn, from.lastColumn)};
      if (covered.firstRow > covered.lastRow || covered.firstColumn > covered.lastColumn) continue;
      for (const auto& block : Landing(covered, from, to)) {
        // A block the rule already covers looks the same after the paste.
        if (sameSheet && std::any_of(entry.ranges.begin(), entry.ranges.end(),
                                     [&](const CellBlock& existing) { return Contains(existing, block); })) {
          continue;
        }
        entry.landed.push_back(block);
      }
    }
    if (!entry.landed.empty()) carried.push_back(std::move(entry));
  }

  auto worksheet = target.root();
  int priority = HighestPriority(worksheet);
  for (auto& entry : carried) {
    const auto corner = Corner(entry.ranges);
    std::vector<CellBlock> all = entry.ranges;
    all.insert(all.end(), entry.landed.begin(), entry.landed.end());
    // On its own sheet the rule simply covers more cells, as long as the cell its formulas are
    // written for stays where it is.
    if (sameSheet && Corner(all) == corner) {
      entry.element.attribute("sqref") = JoinBlocks(all).c_str();
      continue;
    }
    const auto newCorner = Corner(entry.landed);
    pugi::xml_node last;
    for (const auto element : worksheet.children("conditionalFormatting")) last = element;
    auto element = last ? worksheet.insert_copy_after(entry.element, last)
                        : WorksheetChild(worksheet, "conditionalFormatting");
    if (!last) {
      for (const auto attribute : entry.element.attributes()) element.append_copy(attribute);
      for (const auto child : entry.element.children()) element.append_copy(child);
    }
    element.attribute("sqref") = JoinBlocks(entry.landed).c_str();
    for (auto rule : element.children("cfRule")) {
      rule.attribute("priority") = ++priority;
      for (auto formula : rule.children("formula")) {
        formula.text().set(ShiftFormula(formula.text().get(), newCorner.first - corner.first,
                                        newCorner.second - corner.second)
                               .c_str());
      }
    }
  }
}

}  // namespace sw::excel
