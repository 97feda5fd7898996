#pragma once
// Cell formats (styles.xml) the engine adds: changed formats are always new entries, so the
// formats other cells use stay as they were.
#include <pugixml.hpp>
#include <string_view>

#include "excel/constants.h"

namespace sw::excel {

// The styles part a workbook without one gets: Excel's defaults, plus a text format (cellXfs 1).
extern const std::string_view kMinimalStyles;

// Index of a new cell format: `xf` with its `edge` border line set to `weight`.
int AddBorderedFormat(pugi::xml_document& styles, int xf, XlBordersIndex edge, XlBorderWeight weight);
// Number of cell formats; a cell's s must stay below it.
int CellFormatCount(pugi::xml_document& styles);
// Index of a cell format showing text ("@") based on format 0, added when missing.
int TextFormat(pugi::xml_document& styles);

}  // namespace sw::excel
