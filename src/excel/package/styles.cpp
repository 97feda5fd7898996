#include "excel/package/styles.h"

#include <string>
#include <string_view>

namespace sw::excel {

namespace {

// The built-in number format "@": the cell shows its text as typed.
constexpr int kTextNumberFormat = 49;

std::string FormatWith(int numberFormat) {
  return R"(<xf numFmtId=")" + std::to_string(numberFormat) +
         R"(" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/>)";
}

}  // namespace

std::string NewWorkbookStyles(std::initializer_list<int> moreNumberFormats) {
  std::string styles =
      R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
      "\r\n"
      R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
      R"(<fonts count="1"><font><sz val="11"/><color theme="1"/><name val="Calibri"/><family val="2"/>)"
      R"(<scheme val="minor"/></font></fonts>)"
      R"(<fills count="2"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/>)"
      R"(</fill></fills>)"
      R"(<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>)"
      R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)";
  styles += R"(<cellXfs count=")" + std::to_string(2 + moreNumberFormats.size()) + R"(">)";
  styles += R"(<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)";
  styles += FormatWith(kTextNumberFormat);
  for (const int numberFormat : moreNumberFormats) styles += FormatWith(numberFormat);
  styles +=
      R"(</cellXfs><cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
      R"(<dxfs count="0"/><tableStyles count="0" defaultTableStyle="TableStyleMedium2" )"
      R"(defaultPivotStyle="PivotStyleLight16"/></styleSheet>)";
  return styles;
}

namespace {

pugi::xml_node Nth(pugi::xml_node parent, const char* name, int index) {
  int i = 0;
  for (auto node : parent.children(name)) {
    if (i++ == index) return node;
  }
  return {};
}

int Count(pugi::xml_node parent, const char* name) {
  int count = 0;
  for (auto node : parent.children(name)) {
    (void)node;
    ++count;
  }
  return count;
}

void SetCount(pugi::xml_node parent, const char* child) {
  if (!parent.attribute("count")) parent.prepend_attribute("count");
  parent.attribute("count") = Count(parent, child);
}

const char* EdgeName(XlBordersIndex edge) {
  switch (edge) {
    case XlBordersIndex::xlEdgeLeft:
      return "left";
    case XlBordersIndex::xlEdgeTop:
      return "top";
    case XlBordersIndex::xlEdgeRight:
      return "right";
    case XlBordersIndex::xlEdgeBottom:
      break;
  }
  return "bottom";
}

const char* LineStyle(XlBorderWeight weight) {
  switch (weight) {
    case XlBorderWeight::xlHairline:
      return "hair";
    case XlBorderWeight::xlThin:
      return "thin";
    case XlBorderWeight::xlThick:
      return "thick";
    case XlBorderWeight::xlMedium:
      break;
  }
  return "medium";
}

pugi::xml_node Section(pugi::xml_node sheet, const char* name) {
  static constexpr const char* kOrder[] = {"numFmts",      "fonts",   "fills",      "borders",
                                           "cellStyleXfs", "cellXfs", "cellStyles", "dxfs",
                                           "tableStyles",  "colors",  "extLst"};
  if (auto existing = sheet.child(name)) return existing;
  bool after = false;
  for (const char* candidate : kOrder) {
    if (after) {
      if (auto next = sheet.child(candidate)) return sheet.insert_child_before(name, next);
    }
    if (std::string_view(candidate) == name) after = true;
  }
  return sheet.append_child(name);
}

}  // namespace

int CellFormatCount(pugi::xml_document& styles) {
  return Count(styles.document_element().child("cellXfs"), "xf");
}

int AddBorderedFormat(pugi::xml_document& styles, int xf, XlBordersIndex edge, XlBorderWeight weight) {
  auto sheet = styles.document_element();
  auto cellXfs = Section(sheet, "cellXfs");
  auto borders = Section(sheet, "borders");
  auto format = Nth(cellXfs, "xf", xf);
  if (!format) format = Nth(cellXfs, "xf", 0);

  auto oldBorder = Nth(borders, "border", format ? format.attribute("borderId").as_int() : 0);
  auto border = oldBorder ? borders.append_copy(oldBorder) : borders.append_child("border");
  static constexpr const char* kEdgeOrder[] = {"left",   "start",    "right",    "end",       "top",
                                               "bottom", "diagonal", "vertical", "horizontal"};
  const char* edgeName = EdgeName(edge);
  auto line = border.child(edgeName);
  if (!line) {
    bool after = false;
    for (const char* candidate : kEdgeOrder) {
      if (after && border.child(candidate)) {
        line = border.insert_child_before(edgeName, border.child(candidate));
        break;
      }
      if (std::string_view(candidate) == edgeName) after = true;
    }
    if (!line) line = border.append_child(edgeName);
  }
  line.remove_attribute("style");
  line.prepend_attribute("style") = LineStyle(weight);
  if (!line.child("color")) line.append_child("color").append_attribute("indexed") = 64;
  SetCount(borders, "border");

  auto copy = format ? cellXfs.append_copy(format) : cellXfs.append_child("xf");
  for (const char* name : {"numFmtId", "fontId", "fillId", "borderId"}) {
    if (!copy.attribute(name)) copy.append_attribute(name) = 0;
  }
  copy.attribute("borderId") = Count(borders, "border") - 1;
  copy.remove_attribute("applyBorder");
  copy.append_attribute("applyBorder") = 1;
  SetCount(cellXfs, "xf");
  return Count(cellXfs, "xf") - 1;
}

int TextFormat(pugi::xml_document& styles) {
  auto cellXfs = Section(styles.document_element(), "cellXfs");
  int index = 0;
  for (auto xf : cellXfs.children("xf")) {
    if (xf.attribute("numFmtId").as_int() == kTextNumberFormat) return index;
    ++index;
  }
  auto base = Nth(cellXfs, "xf", 0);
  auto copy = base ? cellXfs.append_copy(base) : cellXfs.append_child("xf");
  copy.remove_attribute("numFmtId");
  copy.prepend_attribute("numFmtId") = kTextNumberFormat;
  copy.remove_attribute("applyNumberFormat");
  copy.append_attribute("applyNumberFormat") = 1;
  SetCount(cellXfs, "xf");
  return index;
}

}  // namespace sw::excel
