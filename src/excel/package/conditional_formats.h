#pragma once
// Conditional formats travel with a formats-only paste, as in Excel: the rules that cover copied
// cells come to cover the cells they are pasted on.
#include "excel/cell_blocks.h"
#include "excel/package/worksheet.h"

namespace sw::excel {

// `to` is filled with `from` repeated downwards (rows of `to` past its height start `from` again),
// columns shifted by the difference of the first columns. `source` and `target` may be one sheet.
void PasteConditionalFormats(const Worksheet& source, const CellBlock& from, Worksheet& target,
                             const CellBlock& to, bool sameSheet);

}  // namespace sw::excel
