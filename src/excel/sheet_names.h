#pragma once
// Excel's rules for sheet names, shared by every engine that has to behave like Excel.
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sw::excel {

// Why Excel would refuse `name` for the sheet at `selfIndex` (0-based; -1 for a new sheet) among
// `existing`, or nothing when the name is allowed. Names compare ignoring case.
std::optional<std::string> SheetNameProblem(std::string_view name, const std::vector<std::string>& existing,
                                            int selfIndex);

// Whether another sheet already has `name` (ignoring case): lets a workbook of thousands of sheets
// answer from an index instead of a list of every name.
using SheetNameTaken = std::function<bool(std::string_view name)>;
std::optional<std::string> SheetNameProblem(std::string_view name, const SheetNameTaken& taken);

// The name Excel gives a copy of `source`: "Mall (2)", "Mall (3)", ... shortened to fit 31 characters.
std::string DefaultCopyName(std::string_view source, const std::vector<std::string>& existing);
std::string DefaultCopyName(std::string_view source, const SheetNameTaken& taken);

// The sheet name as a formula writes it: quoted when it needs to be, an apostrophe doubled.
std::string QuoteSheetNameForFormula(std::string_view name);

}  // namespace sw::excel
