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

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
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
  while (i < text.size() && IsLetter(text[i])) ++i;
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

// One piece of a formula as the rewrites below see it; the pieces, joined, give the formula back.
struct FormulaToken {
  enum class Kind {
    kString,      // "text", quotes doubled inside
    kQuotedName,  // 'Sheet name', quotes doubled inside
    kBracketed,   // [...], brackets nested: a structured reference's columns or an external book
    kReference,   // a cell reference: A1, $A1, A$1, $A$1
    kName,        // a function, defined name, table or unquoted sheet name
    kOther,       // any other single character
  };
  Kind kind;
  std::size_t begin;
  std::size_t end;
};

// Calls `visit` with every piece of `formula` in order. Brackets are one piece when
// `wholeBrackets`, otherwise what stands inside them is split like the rest.
template <typename Visit>
void ForEachToken(std::string_view formula, bool wholeBrackets, Visit&& visit) {
  using Kind = FormulaToken::Kind;
  std::size_t i = 0;
  while (i < formula.size()) {
    const char c = formula[i];
    std::size_t begin = i;
    Kind kind = Kind::kOther;
    const bool boundary = i == 0 || !IsNameChar(formula[i - 1]);
    const std::size_t reference = boundary && (c == '$' || IsLetter(c)) ? CellReferenceLength(formula, i) : 0;
    if (c == '"' || c == '\'') {
      kind = c == '"' ? Kind::kString : Kind::kQuotedName;
      i += QuotedLength(formula, i);
    } else if (c == '[' && wholeBrackets) {
      kind = Kind::kBracketed;
      i += BracketLength(formula, i);
    } else if (reference > 0) {
      kind = Kind::kReference;
      i += reference;
    } else if (boundary && IsNameChar(c)) {
      kind = Kind::kName;
      i = NameEnd(formula, i);
    } else if (boundary && c == '$') {
      // A "$" that starts no reference takes the name after it along: that name is no reference
      // either, whatever it looks like.
      visit(FormulaToken{Kind::kOther, i, i + 1});
      begin = ++i;
      kind = Kind::kName;
      i = NameEnd(formula, i);
      if (i == begin) continue;
    } else {
      ++i;
    }
    visit(FormulaToken{kind, begin, i});
  }
}

}  // namespace

std::string ShiftFormula(std::string_view formula, int rows, int columns) {
  std::string shifted;
  shifted.reserve(formula.size() + 8);
  ForEachToken(formula, true, [&](const FormulaToken& token) {
    const std::string_view text = formula.substr(token.begin, token.end - token.begin);
    if (token.kind == FormulaToken::Kind::kReference) {
      shifted += ShiftReference(text, rows, columns);
    } else {
      shifted.append(text);
    }
  });
  return shifted;
}

std::string RenameSheetInFormula(std::string_view formula, std::string_view oldName,
                                 std::string_view newName) {
  const std::string replacement = QuoteSheetNameForFormula(newName);
  std::string renamed;
  ForEachToken(formula, false, [&](const FormulaToken& token) {
    const std::string_view text = formula.substr(token.begin, token.end - token.begin);
    const bool qualifies = token.end < formula.size() && formula[token.end] == '!';
    bool matches = false;
    if (token.kind == FormulaToken::Kind::kQuotedName && qualifies) {
      std::string name;
      for (std::size_t k = 1; k + 1 < text.size(); ++k) {
        name += text[k];
        if (text[k] == '\'') ++k;
      }
      matches = base::EqualsIgnoreCase(name, oldName);
    } else if (token.kind == FormulaToken::Kind::kName && qualifies) {
      const bool external = token.begin > 0 && formula[token.begin - 1] == ']';
      matches = !external && base::EqualsIgnoreCase(text, oldName);
    }
    if (matches) {
      renamed += replacement;
    } else {
      renamed.append(text);
    }
  });
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
  ForEachToken(formula, false, [&](const FormulaToken& token) {
    const std::string_view text = formula.substr(token.begin, token.end - token.begin);
    const bool structured = token.end < formula.size() && formula[token.end] == '[';
    const bool matches =
        token.kind == FormulaToken::Kind::kName && structured && base::EqualsIgnoreCase(text, oldName);
    renamed.append(matches ? newName : text);
  });
  return renamed;
}

}  // namespace sw::excel
