#pragma once
// Small rewrites of formula text as Excel stores it in files (A1 style, no leading "=").
#include <string>
#include <string_view>

namespace sw::excel {

// The formula as it reads in a cell `rows` down and `columns` right of the original: relative
// references move, absolute ones ($A$1) stay, as when a shared formula is written out per cell.
std::string ShiftFormula(std::string_view formula, int rows, int columns);

// Every reference qualified with sheet `oldName` (quoted or not, any case) now names `newName`,
// quoted as the formula needs.
std::string RenameSheetInFormula(std::string_view formula, std::string_view oldName,
                                 std::string_view newName);

// Whether a part's XML text can hold a formula that names sheet `name`: a cheap look before the
// formulas are parsed. Names that XML may escape, or formulas double, are always looked for.
bool SheetNameMayOccur(std::string_view xmlText, std::string_view name);

// Replaces the table name `oldName` where it starts a structured reference ("Table1[Col]").
std::string RenameTableInFormula(std::string_view formula, std::string_view oldName,
                                 std::string_view newName);

}  // namespace sw::excel
