#pragma once
// Edits of one worksheet part's XML: the cell store in <sheetData>, its dimension, manual row
// breaks and the selection. Rows and cells stay in ascending order, as Excel requires.
#include <functional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace sw::excel {

class Worksheet {
 public:
  explicit Worksheet(pugi::xml_document& document);

  // Gives rows and cells without an r attribute the position they imply, and drops a namespace
  // prefix from SpreadsheetML elements, so the other edits can rely on both.
  static void Normalize(pugi::xml_document& document);

  pugi::xml_node root() const { return root_; }
  pugi::xml_node Row(int row) const;
  pugi::xml_node Cell(int row, int column) const;
  pugi::xml_node RowForWrite(int row);
  pugi::xml_node CellForWrite(int row, int column);

  // Stores `text` as an inline string, keeping the cell's style; empty text empties the cell.
  void SetText(int row, int column, std::string_view text);
  // Removes values and formulas in the block, keeping formats.
  void ClearContents(int firstRow, int firstColumn, int lastRow, int lastColumn);
  // Forgets the results formulas had when the file was last calculated, keeping the formulas (shared
  // and array ones as they are): once cells were written they may be wrong, and readers that do not
  // recalculate on load would show them.
  void DropCachedFormulaResults();
  // The cell's text as Excel would show its value; `sharedString` looks up index entries.
  std::string Text(int row, int column, const std::function<std::string(int)>& sharedString) const;
  // The same for a cell element already at hand (as ForEachCell gives them): finding a cell by its
  // address walks its rows from the end, which a pass over every cell cannot afford.
  static std::string Text(pugi::xml_node cell, const std::function<std::string(int)>& sharedString);

  // The style the cell shows: its own, else its row's, else its column's.
  int EffectiveStyle(int row, int column) const;
  void SetStyle(int row, int column, int style);
  void SetRowStyle(int row, int style, bool custom);
  // `height` in points as the file writes it; empty gives the row back its default height.
  void SetRowHeight(int row, std::string_view height, bool custom);
  // Calls `visit(row, column)` for every stored cell in the block.
  void ForEachCell(int firstRow, int firstColumn, int lastRow, int lastColumn,
                   const std::function<void(pugi::xml_node)>& visit) const;

  void UpdateDimension();
  // Adds a manual break above `row`; false when Excel's limit of 1023 breaks is reached.
  bool AddRowBreak(int row);
  int RowBreakCount() const;

  void SetSelection(int activeRow, int activeColumn, std::string_view sqref);
  void SetTabSelected(bool selected);
  void SetColumnWidth(int column, double width);

 private:
  void DropFormula(pugi::xml_node cell);
  void Unshare(pugi::xml_node master);
  // The first row element numbered `row` or higher; null when every row lies above it.
  pugi::xml_node FirstRowFrom(int row) const;

  pugi::xml_node root_;
  pugi::xml_node sheetData_;
  // The row the last lookup ended at: lookups start from it, as writes and pastes go down a sheet row
  // by row. Forgotten whenever a row element is removed.
  mutable pugi::xml_node nearRow_;
};

// Documents that write SpreadsheetML with a prefix ("x:worksheet") get the default namespace
// instead, so edits can look for plain element names.
void DropMainNamespacePrefix(pugi::xml_document& document);

// Calls onFormula(element) for every element of `node`'s document that holds a formula: cells,
// conditional formats, data validations, and their forms in the extension list (xm:f); any prefix.
// In document order. A walk rather than an XPath query with local-name(): a single-sheet run renames
// its sheet on every page, and the query cost more than the rest of the rename.
void ForEachFormulaElement(pugi::xml_node node, const std::function<void(pugi::xml_node)>& onFormula);

int CellRow(pugi::xml_node cell);
int CellColumn(pugi::xml_node cell);

}  // namespace sw::excel
