#include "excel/package/xml_order.h"

#include <algorithm>
#include <cstring>

namespace sw::excel {

namespace {

std::string_view LocalName(const char* name) {
  const char* colon = std::strchr(name, ':');
  return colon ? std::string_view(colon + 1) : std::string_view(name);
}

}  // namespace

pugi::xml_node ChildInOrder(pugi::xml_node parent, const char* name,
                            std::initializer_list<std::string_view> order) {
  if (auto existing = parent.child(name)) return existing;
  const auto rank = [&](std::string_view local) {
    const auto found = std::find(order.begin(), order.end(), local);
    return found == order.end() ? static_cast<std::ptrdiff_t>(order.size()) : found - order.begin();
  };
  const auto wanted = rank(name);
  for (auto child = parent.first_child(); child; child = child.next_sibling()) {
    if (child.type() == pugi::node_element && rank(LocalName(child.name())) > wanted) {
      return parent.insert_child_before(name, child);
    }
  }
  return parent.append_child(name);
}

pugi::xml_node WorksheetChild(pugi::xml_node worksheet, const char* name) {
  return ChildInOrder(worksheet, name,
                      {"sheetPr",
                       "dimension",
                       "sheetViews",
                       "sheetFormatPr",
                       "cols",
                       "sheetData",
                       "sheetCalcPr",
                       "sheetProtection",
                       "protectedRanges",
                       "scenarios",
                       "autoFilter",
                       "sortState",
                       "dataConsolidate",
                       "customSheetViews",
                       "mergeCells",
                       "phoneticPr",
                       "conditionalFormatting",
                       "dataValidations",
                       "hyperlinks",
                       "printOptions",
                       "pageMargins",
                       "pageSetup",
                       "headerFooter",
                       "rowBreaks",
                       "colBreaks",
                       "customProperties",
                       "cellWatches",
                       "ignoredErrors",
                       "smartTags",
                       "drawing",
                       "legacyDrawing",
                       "legacyDrawingHF",
                       "drawingHF",
                       "picture",
                       "oleObjects",
                       "controls",
                       "webPublishItems",
                       "tableParts",
                       "extLst"});
}

pugi::xml_node WorkbookChild(pugi::xml_node workbook, const char* name) {
  return ChildInOrder(workbook, name,
                      {"fileVersion", "fileSharing", "workbookPr", "workbookProtection", "bookViews",
                       "sheets", "functionGroups", "externalReferences", "definedNames", "calcPr", "oleSize",
                       "customWorkbookViews", "pivotCaches", "smartTagPr", "smartTagTypes", "webPublishing",
                       "fileRecoveryPr", "webPublishObjects", "extLst"});
}

}  // namespace sw::excel
