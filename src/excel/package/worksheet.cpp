#include "excel/package/worksheet.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#include "excel/cell_address.h"
#include "excel/engine.h"
#include "excel/package/cell_text.h"
#include "excel/package/formula_text.h"
#include "excel/package/package_error.h"
#include "excel/package/xml_order.h"

namespace sw::excel {

namespace {

constexpr std::size_t kMaxRowBreaks = 1023;
constexpr const char* kMainNamespace = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

int RowNumber(pugi::xml_node row) {
  return row.attribute("r").as_int();
}

void SetChildText(pugi::xml_node parent, const char* name, const std::string& text) {
  auto child = parent.append_child(name);
  child.text().set(text.c_str());
  if (!text.empty() && (text.front() == ' ' || text.back() == ' ' || text.front() == '\t' ||
                        text.back() == '\t' || text.front() == '\n' || text.back() == '\n')) {
    child.append_attribute("xml:space") = "preserve";
  }
}

std::string InlineText(pugi::xml_node is) {
  std::string text = is.child("t").text().get();
  for (const auto run : is.children("r")) text += run.child("t").text().get();
  return text;
}

void StripPrefix(pugi::xml_node root, std::string_view prefix) {
  for (auto node = root; node;) {
    if (node.type() == pugi::node_element) {
      const std::string_view name = node.name();
      if (name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix &&
          name[prefix.size()] == ':') {
        node.set_name(std::string(name.substr(prefix.size() + 1)).c_str());
      }
    }
    if (node.first_child()) {
      node = node.first_child();
      continue;
    }
    while (node && node != root && !node.next_sibling()) node = node.parent();
    if (!node || node == root) break;
    node = node.next_sibling();
  }
}

}  // namespace

namespace {

bool IsFormulaElementName(std::string_view name) {
  if (const auto colon = name.find(':'); colon != std::string_view::npos) name.remove_prefix(colon + 1);
  return name == "f" || name == "formula" || name == "formula1" || name == "formula2";
}

}  // namespace

void ForEachFormulaElement(pugi::xml_node node, const std::function<void(pugi::xml_node)>& onFormula) {
  const pugi::xml_node top = node.root();
  pugi::xml_node at = top.first_child();
  while (at) {
    if (at.type() == pugi::node_element && IsFormulaElementName(at.name())) onFormula(at);
    if (at.first_child()) {
      at = at.first_child();
      continue;
    }
    while (at != top && !at.next_sibling()) at = at.parent();
    if (at == top) break;
    at = at.next_sibling();
  }
}

int CellRow(pugi::xml_node cell) {
  const auto address = ParseCellAddress(cell.attribute("r").value());
  return address ? address->row : 0;
}
int CellColumn(pugi::xml_node cell) {
  const auto address = ParseCellAddress(cell.attribute("r").value());
  return address ? address->column : 0;
}

void DropMainNamespacePrefix(pugi::xml_document& document) {
  auto root = document.document_element();
  const std::string_view rootName = root.name();
  const auto colon = rootName.find(':');
  if (colon == std::string_view::npos) return;
  const std::string prefix(rootName.substr(0, colon));
  if (std::string_view(root.attribute(("xmlns:" + prefix).c_str()).value()) == kMainNamespace) {
    StripPrefix(root, prefix);
    if (!root.attribute("xmlns")) root.append_attribute("xmlns") = kMainNamespace;
  }
}

void Worksheet::Normalize(pugi::xml_document& document) {
  DropMainNamespacePrefix(document);
  auto root = document.document_element();
  auto sheetData = root.child("sheetData");
  long long nextRow = 1;
  for (auto row : sheetData.children("row")) {
    // Bounded before anything is counted from it: a row number past Excel's last row is no row of a
    // sheet at all, and Excel calls such a file damaged too.
    long long r = row.attribute("r").as_llong();
    if (r <= 0) r = nextRow;
    if (r > kMaxRows) {
      throw PackageError("Kalkylbladet har en rad utanför Excels blad (rad " + std::to_string(r) + ").");
    }
    if (row.attribute("r").as_llong() != r) {
      if (!row.attribute("r")) row.append_attribute("r");
      row.attribute("r") = r;
    }
    nextRow = r + 1;
    int nextColumn = 1;
    for (auto cell : row.children("c")) {
      const auto address = ParseCellAddress(cell.attribute("r").value());
      if (!address || address->row != static_cast<int>(r)) {
        if (!cell.attribute("r")) cell.append_attribute("r");
        cell.attribute("r") =
            FormatCellAddress(static_cast<int>(r), std::min(nextColumn, kMaxColumns)).c_str();
      }
      nextColumn = CellColumn(cell) + 1;
    }
  }
}

Worksheet::Worksheet(pugi::xml_document& document)
    : root_(document.document_element()), sheetData_(WorksheetChild(root_, "sheetData")) {}

pugi::xml_node Worksheet::FirstRowFrom(int row) const {
  // From the row found last, else from the sheet's end: a search from the end for every cell made a
  // paste over a long dynamic-length sheet take time with the square of its rows.
  pugi::xml_node at = nearRow_;
  if (!at) {
    at = sheetData_.last_child();
    if (at && std::string_view(at.name()) != "row") at = at.previous_sibling("row");
  }
  if (!at) return {};
  if (RowNumber(at) >= row) {
    for (auto above = at.previous_sibling("row"); above && RowNumber(above) >= row;
         above = above.previous_sibling("row")) {
      at = above;
    }
    nearRow_ = at;
    return at;
  }
  for (auto below = at.next_sibling("row"); below; below = below.next_sibling("row")) {
    nearRow_ = below;
    if (RowNumber(below) >= row) return below;
  }
  return {};
}

pugi::xml_node Worksheet::Row(int row) const {
  const auto node = FirstRowFrom(row);
  return node && RowNumber(node) == row ? node : pugi::xml_node();
}

pugi::xml_node Worksheet::Cell(int row, int column) const {
  const auto rowNode = Row(row);
  for (auto node = rowNode.last_child(); node; node = node.previous_sibling()) {
    if (node.type() != pugi::node_element) continue;
    const int c = CellColumn(node);
    if (c == column) return node;
    if (c < column) break;
  }
  return {};
}

pugi::xml_node Worksheet::RowForWrite(int row) {
  const auto after = FirstRowFrom(row);
  if (after && RowNumber(after) == row) return after;
  auto created = after ? sheetData_.insert_child_before("row", after) : sheetData_.append_child("row");
  created.append_attribute("r") = row;
  nearRow_ = created;
  return created;
}

pugi::xml_node Worksheet::CellForWrite(int row, int column) {
  auto rowNode = RowForWrite(row);
  pugi::xml_node before;
  for (auto node = rowNode.last_child(); node; node = node.previous_sibling()) {
    if (node.type() != pugi::node_element) continue;
    const int c = CellColumn(node);
    if (c == column) return node;
    if (c < column) break;
    before = node;
  }
  auto cell = before ? rowNode.insert_child_before("c", before) : rowNode.append_child("c");
  cell.append_attribute("r") = FormatCellAddress(row, column).c_str();
  const int style = EffectiveStyle(row, column);
  if (style != 0) cell.append_attribute("s") = style;
  rowNode.remove_attribute("spans");  // a hint only; it would no longer cover the row's cells
  return cell;
}

void Worksheet::DropFormula(pugi::xml_node cell) {
  const auto formula = cell.child("f");
  if (!formula) return;
  if (std::string_view(formula.attribute("t").value()) == "shared" && formula.attribute("ref")) Unshare(cell);
  cell.remove_child(formula);
}

// The master of a shared formula is going away: every other cell of the group gets the formula
// written out for its own position, so nothing depends on the master any longer.
void Worksheet::Unshare(pugi::xml_node master) {
  const auto masterFormula = master.child("f");
  const std::string group = masterFormula.attribute("si").value();
  const std::string text = masterFormula.text().get();
  const int masterRow = CellRow(master);
  const int masterColumn = CellColumn(master);
  for (auto row : sheetData_.children("row")) {
    for (auto cell : row.children("c")) {
      auto formula = cell.child("f");
      if (cell == master || !formula || group != formula.attribute("si").value() ||
          std::string_view(formula.attribute("t").value()) != "shared") {
        continue;
      }
      const std::string own = ShiftFormula(text, CellRow(cell) - masterRow, CellColumn(cell) - masterColumn);
      formula.remove_attribute("t");
      formula.remove_attribute("si");
      formula.remove_attribute("ref");
      formula.text().set(own.c_str());
    }
  }
}

void Worksheet::SetText(int row, int column, std::string_view text) {
  if (text.empty()) {
    ClearContents(row, column, row, column);
    return;
  }
  auto cell = CellForWrite(row, column);
  DropFormula(cell);
  while (auto child = cell.first_child()) cell.remove_child(child);
  cell.remove_attribute("cm");
  cell.remove_attribute("vm");
  if (!cell.attribute("t")) cell.append_attribute("t");
  cell.attribute("t") = "inlineStr";
  SetChildText(cell.append_child("is"), "t", EncodeCellText(text));
}

namespace {

// A row element that says nothing but where it is and which columns it spans: an empty one can go.
// Any other attribute (a style, a height, hidden, an outline level, thick borders, ...) is the
// template's and keeps the row.
bool OnlyPlacesItself(pugi::xml_node row) {
  for (const auto attribute : row.attributes()) {
    const std::string_view name = attribute.name();
    if (name != "r" && name != "spans") return false;
  }
  return true;
}

}  // namespace

void Worksheet::ClearContents(int firstRow, int firstColumn, int lastRow, int lastColumn) {
  std::vector<pugi::xml_node> cells;
  ForEachCell(firstRow, firstColumn, lastRow, lastColumn,
              [&](pugi::xml_node cell) { cells.push_back(cell); });
  for (auto cell : cells) {
    DropFormula(cell);
    while (auto child = cell.first_child()) cell.remove_child(child);
    cell.remove_attribute("t");
    cell.remove_attribute("cm");
    cell.remove_attribute("vm");
    if (!cell.attribute("s")) {
      auto row = cell.parent();
      row.remove_child(cell);
      if (!row.first_child() && OnlyPlacesItself(row)) {
        nearRow_ = {};
        sheetData_.remove_child(row);
      }
    }
  }
}

void Worksheet::DropCachedFormulaResults() {
  for (auto row : sheetData_.children("row")) {
    for (auto cell : row.children("c")) {
      if (!cell.child("f")) continue;
      while (auto value = cell.child("v")) cell.remove_child(value);
      while (auto text = cell.child("is")) cell.remove_child(text);
      // A type without a value is at best meaningless and, for "s", an index Excel cannot find;
      // the default (number) is what Excel itself writes for a formula not yet calculated.
      cell.remove_attribute("t");
    }
  }
}

void Worksheet::ForEachCell(int firstRow, int firstColumn, int lastRow, int lastColumn,
                            const std::function<void(pugi::xml_node)>& visit) const {
  for (auto row = FirstRowFrom(firstRow); row; row = row.next_sibling("row")) {
    const int r = RowNumber(row);
    if (r > lastRow) break;
    for (auto cell : row.children("c")) {
      const int c = CellColumn(cell);
      if (c < firstColumn) continue;
      if (c > lastColumn) break;
      visit(cell);
    }
  }
}

std::string Worksheet::Text(int row, int column, const std::function<std::string(int)>& sharedString) const {
  return Text(Cell(row, column), sharedString);
}

std::string Worksheet::Text(pugi::xml_node cell, const std::function<std::string(int)>& sharedString) {
  if (!cell) return {};
  const std::string_view type = cell.attribute("t").value();
  if (type == "inlineStr") return DecodeCellText(InlineText(cell.child("is")));
  const std::string value = cell.child("v").text().get();
  if (type == "s") return sharedString(std::atoi(value.c_str()));
  if (type == "b") return value == "1" ? "SANT" : "FALSKT";
  if (type == "str") return DecodeCellText(value);
  return value;
}

int Worksheet::EffectiveStyle(int row, int column) const {
  if (const auto cell = Cell(row, column); cell && cell.attribute("s")) return cell.attribute("s").as_int();
  if (const auto rowNode = Row(row); rowNode && rowNode.attribute("customFormat").as_bool()) {
    return rowNode.attribute("s").as_int();
  }
  for (const auto col : root_.child("cols").children("col")) {
    if (col.attribute("min").as_int() <= column && column <= col.attribute("max").as_int()) {
      return col.attribute("style").as_int();
    }
  }
  return 0;
}

void Worksheet::SetStyle(int row, int column, int style) {
  auto cell = CellForWrite(row, column);
  if (style == 0) {
    cell.remove_attribute("s");
    return;
  }
  if (!cell.attribute("s")) cell.append_attribute("s");
  cell.attribute("s") = style;
}

void Worksheet::SetRowStyle(int row, int style, bool custom) {
  auto rowNode = custom ? RowForWrite(row) : Row(row);
  if (!rowNode) return;
  rowNode.remove_attribute("s");
  rowNode.remove_attribute("customFormat");
  if (custom) {
    // s and customFormat come after r, spans in Excel's attribute order; order is not significant.
    rowNode.append_attribute("s") = style;
    rowNode.append_attribute("customFormat") = 1;
  }
}

void Worksheet::SetRowHeight(int row, std::string_view height, bool custom) {
  auto rowNode = height.empty() ? Row(row) : RowForWrite(row);
  if (!rowNode) return;
  rowNode.remove_attribute("ht");
  rowNode.remove_attribute("customHeight");
  if (height.empty()) return;
  rowNode.append_attribute("ht") = std::string(height).c_str();
  if (custom) rowNode.append_attribute("customHeight") = 1;
}

void Worksheet::UpdateDimension() {
  int firstRow = 0, lastRow = 0, firstColumn = 0, lastColumn = 0;
  for (const auto row : sheetData_.children("row")) {
    for (const auto cell : row.children("c")) {
      const int r = CellRow(cell);
      const int c = CellColumn(cell);
      if (r == 0) continue;
      if (firstRow == 0 || r < firstRow) firstRow = r;
      lastRow = std::max(lastRow, r);
      if (firstColumn == 0 || c < firstColumn) firstColumn = c;
      lastColumn = std::max(lastColumn, c);
    }
  }
  std::string ref = "A1";
  if (firstRow != 0) {
    ref = FormatCellAddress(firstRow, firstColumn);
    if (firstRow != lastRow || firstColumn != lastColumn) ref += ":" + FormatCellAddress(lastRow, lastColumn);
  }
  auto dimension = WorksheetChild(root_, "dimension");
  if (!dimension.attribute("ref")) dimension.append_attribute("ref");
  dimension.attribute("ref") = ref.c_str();
}

bool Worksheet::AddRowBreak(int row) {
  auto breaks = root_.child("rowBreaks");
  const int id = row - 1;
  pugi::xml_node before;
  std::size_t count = 0;
  for (auto brk : breaks.children("brk")) {
    ++count;
    const int existing = brk.attribute("id").as_int();
    if (existing == id) {
      if (!brk.attribute("man").as_bool()) {  // an automatic break becomes a manual one
        brk.remove_attribute("man");
        brk.append_attribute("man") = 1;
      }
      before = {};
      count = std::numeric_limits<std::size_t>::max();
      break;
    }
    if (!before && existing > id) before = brk;
  }
  if (count != std::numeric_limits<std::size_t>::max()) {
    if (count >= kMaxRowBreaks) return false;
    breaks = WorksheetChild(root_, "rowBreaks");
    auto brk = before ? breaks.insert_child_before("brk", before) : breaks.append_child("brk");
    brk.append_attribute("id") = id;
    brk.append_attribute("max") = kMaxColumns - 1;
    brk.append_attribute("man") = 1;
  }
  int total = 0, manual = 0;
  for (const auto brk : breaks.children("brk")) {
    ++total;
    if (brk.attribute("man").as_bool()) ++manual;
  }
  breaks.remove_attribute("count");
  breaks.remove_attribute("manualBreakCount");
  breaks.prepend_attribute("manualBreakCount") = manual;
  breaks.prepend_attribute("count") = total;
  return true;
}

int Worksheet::RowBreakCount() const {
  int count = 0;
  for (const auto brk : root_.child("rowBreaks").children("brk")) {
    (void)brk;
    ++count;
  }
  return count;
}

void Worksheet::SetSelection(int activeRow, int activeColumn, std::string_view sqref) {
  auto views = WorksheetChild(root_, "sheetViews");
  auto view = views.child("sheetView");
  if (!view) view = views.append_child("sheetView");
  if (!view.attribute("workbookViewId")) view.append_attribute("workbookViewId") = 0;
  const std::string pane = view.child("pane").attribute("activePane").value();
  // An absent pane is the top left one, whether the view or the selection leaves it out.
  const auto samePane = [&](std::string_view candidate) {
    return (pane.empty() ? "topLeft" : std::string_view(pane)) == (candidate.empty() ? "topLeft" : candidate);
  };
  pugi::xml_node selection;
  for (auto candidate : view.children("selection")) {
    if (samePane(candidate.attribute("pane").value())) {
      selection = candidate;
      break;
    }
  }
  if (!selection) {
    auto after = view.child("pane");
    for (auto candidate : view.children("selection")) after = candidate;
    selection = after ? view.insert_child_after("selection", after) : view.prepend_child("selection");
    if (!pane.empty()) selection.append_attribute("pane") = pane.c_str();
  }
  selection.remove_attribute("activeCell");
  selection.remove_attribute("activeCellId");
  selection.remove_attribute("sqref");
  selection.append_attribute("activeCell") = FormatCellAddress(activeRow, activeColumn).c_str();
  selection.append_attribute("sqref") = std::string(sqref).c_str();
}

void Worksheet::SetTabSelected(bool selected) {
  auto view = root_.child("sheetViews").child("sheetView");
  if (!view) {
    if (!selected) return;
    view = WorksheetChild(root_, "sheetViews").append_child("sheetView");
    view.append_attribute("workbookViewId") = 0;
  }
  view.remove_attribute("tabSelected");
  if (selected) view.prepend_attribute("tabSelected") = 1;
}

void Worksheet::SetColumnWidth(int column, double width) {
  auto cols = WorksheetChild(root_, "cols");
  pugi::xml_node before;
  for (auto col : cols.children("col")) {
    if (col.attribute("min").as_int() <= column && column <= col.attribute("max").as_int()) {
      if (col.attribute("min").as_int() != column || col.attribute("max").as_int() != column) {
        // Split a span so only this column changes.
        const int first = col.attribute("min").as_int();
        const int last = col.attribute("max").as_int();
        if (first < column) {
          auto left = cols.insert_copy_before(col, col);
          left.attribute("max") = column - 1;
        }
        if (column < last) {
          auto right = cols.insert_copy_after(col, col);
          right.attribute("min") = column + 1;
        }
        col.attribute("min") = column;
        col.attribute("max") = column;
      }
      before = col;
      break;
    }
    if (col.attribute("min").as_int() > column) {
      before = cols.insert_child_before("col", col);
      before.append_attribute("min") = column;
      before.append_attribute("max") = column;
      break;
    }
  }
  if (!before) {
    before = cols.append_child("col");
    before.append_attribute("min") = column;
    before.append_attribute("max") = column;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", width);
  for (const char* name : {"width", "bestFit", "customWidth"}) before.remove_attribute(name);
  before.append_attribute("width") = text;
  before.append_attribute("bestFit") = 1;
  before.append_attribute("customWidth") = 1;
}

}  // namespace sw::excel
