#pragma once
// Cell formats (styles.xml) the engine adds: changed formats are always new entries, so the
// formats other cells use stay as they were.
#include <initializer_list>
#include <pugixml.hpp>
#include <string>

#include "excel/constants.h"

namespace sw::excel {

// The styles part of a new workbook, or of one that has none: Excel's defaults with cell format 0
// General and 1 text ("@"), then one cell format per built-in number format in `moreNumberFormats`
// (cellXfs 2, 3, …).
std::string NewWorkbookStyles(std::initializer_list<int> moreNumberFormats = {});

// Index of a new cell format: `xf` with its `edge` border line set to `weight`.
int AddBorderedFormat(pugi::xml_document& styles, int xf, XlBordersIndex edge, XlBorderWeight weight);
// Number of cell formats; a cell's s must stay below it.
int CellFormatCount(pugi::xml_document& styles);
// Index of a cell format showing text ("@") based on format 0, added when missing.
int TextFormat(pugi::xml_document& styles);

}  // namespace sw::excel
