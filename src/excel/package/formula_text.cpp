#include "excel/package/formula_text.h"

#include <algorithm>

#include "base/strings.h"
#include "excel/cell_address.h"
#include "excel/engine.h"
#include "excel/sheet_names.h"

namespace sw::excel {

namespace {

bool IsNameChar(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
         c == '\\' || byte >= 0x80;
}

// Where the name (or function, or sheet name without quotes) that starts at `at` ends.
std::size_t NameEnd(std::string_view text, std::size_t at) {
  while (at < text.size() && IsNameChar(text[at])) ++at;
  return at;
}

// Length of a string literal or quoted sheet name starting at `at` (which holds the quote).
std::size_t QuotedLength(std::string_view text, std::size_t at) {
  const char quote = text[at];
  std::size_t i = at + 1;
  while (i < text.size()) {
    if (text[i] == quote) {
      if (i + 1 < text.size() && text[i + 1] == quote) {
        i += 2;
        continue;
      }
      return i + 1 - at;
    }
    ++i;
  }
  return text.size() - at;
}

std::size_t BracketLength(std::string_view text, std::size_t at) {
  int depth = 0;
  for (std::size_t i = at; i < text.size(); ++i) {
    if (text[i] == '[') ++depth;
    if (text[i] == ']' && --depth == 0) return i + 1 - at;
  }
  return text.size() - at;
}

// A cell reference starting at `at`: its length, or 0.
std::size_t CellReferenceLength(std::string_view text, std::size_t at) {
  std::size_t i = at;
  if (i < text.size() && text[i] == '$') ++i;
  const std::size_t letters = i;
  while (i < text.size() && ((text[i] >= 'A' && text[i] <= 'Z') || (text[i] >= 'a' && text[i] <= 'z'))) ++i;
  if (i == letters || i - letters > 3) return 0;
  if (i < text.size() && text[i] == '$') ++i;
  const std::size_t digits = i;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
  if (i == digits) return 0;
  if (i < text.size() && (IsNameChar(text[i]) || text[i] == '(' || text[i] == '!' || text[i] == '['))
    return 0;
  return ParseCellAddress(text.substr(at, i - at)) ? i - at : 0;
}

std::string ShiftReference(std::string_view reference, int rows, int columns) {
  std::size_t i = 0;
  const bool absoluteColumn = reference[i] == '$';
  if (absoluteColumn) ++i;
  const std::size_t letters = i;
  while (reference[i] != '$' && !(reference[i] >= '0' && reference[i] <= '9')) ++i;
  const std::string_view columnText = reference.substr(letters, i - letters);
  const bool absoluteRow = reference[i] == '$';
  if (absoluteRow) ++i;
  const auto address = ParseCellAddress(std::string(columnText) + std::string(reference.substr(i)));
  int column = address->column + (absoluteColumn ? 0 : columns);
  int row = address->row + (absoluteRow ? 0 : rows);
  if (column < 1 || column > kMaxColumns || row < 1 || row > kMaxRows) return "#REF!";
  return (absoluteColumn ? "$" : "") + ColumnName(column) + (absoluteRow ? "$" : "") + std::to_string(row);
}

}  // namespace

std::string ShiftFormula(std::string_view formula, int rows, int columns) {
  std::string shifted;
  shifted.reserve(formula.size() + 8);
  std::size_t i = 0;
  while (i < formula.size()) {
    const char c = formula[i];
    if (c == '"' || c == '\'') {
      const std::size_t length = QuotedLength(formula, i);
      shifted.append(formula.substr(i, length));
      i += length;
      continue;
    }
    if (c == '[') {
      const std::size_t length = BracketLength(formula, i);
      shifted.append(formula.substr(i, length));
      i += length;
      continue;
    }
    const bool boundary = i == 0 || !IsNameChar(formula[i - 1]);
    if (boundary && (c == '$' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))) {
      if (const std::size_t length = CellReferenceLength(formula, i)) {
        shifted += ShiftReference(formula.substr(i, length), rows, columns);
        i += length;
        continue;
      }
      const std::size_t end = NameEnd(formula, i + 1);  // the rest of a name keeps its digits
      shifted.append(formula.substr(i, end - i));
      i = end;
      continue;
    }
    shifted += c;
    ++i;
  }
  return shifted;
}

std::string RenameSheetInFormula(std::string_view formula, std::string_view oldName,
                                 std::string_view newName) {
  const std::string replacement = QuoteSheetNameForFormula(newName);
  std::string renamed;
  std::size_t i = 0;
  while (i < formula.size()) {
    const char c = formula[i];
    if (c == '"') {
      const std::size_t length = QuotedLength(formula, i);
      renamed.append(formula.substr(i, length));
      i += length;
      continue;
    }
    if (c == '\'') {
      const std::size_t length = QuotedLength(formula, i);
      std::string name;
      for (std::size_t k = i + 1; k + 1 < i + length; ++k) {
        name += formula[k];
        if (formula[k] == '\'') ++k;
      }
      if (i + length < formula.size() && formula[i + length] == '!' &&
          base::EqualsIgnoreCase(name, oldName)) {
        renamed += replacement;
      } else {
        renamed.append(formula.substr(i, length));
      }
      i += length;
      continue;
    }
    if (IsNameChar(c) && (i == 0 || !IsNameChar(formula[i - 1]))) {
      const std::size_t end = NameEnd(formula, i);
      const std::string_view name = formula.substr(i, end - i);
      const bool external = i > 0 && formula[i - 1] == ']';
      if (!external && end < formula.size() && formula[end] == '!' && base::EqualsIgnoreCase(name, oldName)) {
        renamed += replacement;
      } else {
        renamed.append(name);
      }
      i = end;
      continue;
    }
    renamed += c;
    ++i;
  }
  return renamed;
}

bool SheetNameMayOccur(std::string_view xmlText, std::string_view name) {
  if (name.find_first_of("&<>\"'") != std::string_view::npos) return true;
  const auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::search(xmlText.begin(), xmlText.end(), name.begin(), name.end(),
                     [&](char a, char b) { return lower(a) == lower(b); }) != xmlText.end();
}

std::string RenameTableInFormula(std::string_view formula, std::string_view oldName,
                                 std::string_view newName) {
  std::string renamed;
  std::size_t i = 0;
  while (i < formula.size()) {
    const char c = formula[i];
    if (c == '"' || c == '\'') {
      const std::size_t length = QuotedLength(formula, i);
      renamed.append(formula.substr(i, length));
      i += length;
      continue;
    }
    if (IsNameChar(c) && (i == 0 || !IsNameChar(formula[i - 1]))) {
      const std::size_t end = NameEnd(formula, i);
      const std::string_view name = formula.substr(i, end - i);
      const bool structured = end < formula.size() && formula[end] == '[';
      renamed.append(structured && base::EqualsIgnoreCase(name, oldName) ? newName : name);
      i = end;
      continue;
    }
    renamed += c;
    ++i;
  }
  return renamed;
}

}  // namespace sw::excel
