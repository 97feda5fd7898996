#pragma once
// FillPages: walks the preview's rows and places them on pages. A light-green row starts a page (its
// column-0 text, if any, names the placement the following pages carry); every other row is data and
// goes to the next row of the current page, whose columns the template's COLUMNS list gives. A full
// page starts a continuation page with the same placement. The last page's next-sheet cell says "-".
//
// Dynamic length (INFINITE in the template): no page is made; every row goes to the common sheet, one
// below the other, with a horizontal page break before each placement after the first, and the
// closing format pass gives all rows the second data row's formats and a medium bottom border.
#include "generate/generation_run.h"

namespace sw::generate {

void FillPages(GenerationRun& run);

// The closing format pass of a dynamic-length sheet.
void FormatDynamicSheet(GenerationRun& run);

}  // namespace sw::generate
