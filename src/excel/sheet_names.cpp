#include "excel/sheet_names.h"

#include <algorithm>
#include <cctype>

#include "base/strings.h"
#include "excel/cell_address.h"

namespace sw::excel {

namespace {

constexpr std::size_t kMaxNameLength = 31;  // counted in UTF-16 units, as Excel counts

std::size_t Utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) == 0x80) continue;
    units += byte >= 0xF0 ? 2 : 1;
  }
  return units;
}

bool IsTaken(std::string_view name, const std::vector<std::string>& existing, int selfIndex) {
  for (std::size_t i = 0; i < existing.size(); ++i) {
    if (static_cast<int>(i) != selfIndex && base::EqualsIgnoreCase(existing[i], name)) return true;
  }
  return false;
}

// "R", "C", "R1C1", "r2c": names Excel would read as R1C1 references.
bool LooksLikeR1C1(std::string_view name) {
  std::size_t i = 0;
  const auto digits = [&] {
    while (i < name.size() && name[i] >= '0' && name[i] <= '9') ++i;
  };
  if (i < name.size() && (name[i] == 'R' || name[i] == 'r')) {
    ++i;
    digits();
  }
  if (i < name.size() && (name[i] == 'C' || name[i] == 'c')) {
    ++i;
    digits();
  }
  return i > 0 && i == name.size();
}

}  // namespace

std::optional<std::string> SheetNameProblem(std::string_view name, const std::vector<std::string>& existing,
                                            int selfIndex) {
  return SheetNameProblem(
      name, [&](std::string_view candidate) { return IsTaken(candidate, existing, selfIndex); });
}

std::optional<std::string> SheetNameProblem(std::string_view name, const SheetNameTaken& taken) {
  if (name.empty()) return "Bladnamnet får inte vara tomt.";
  if (Utf16Length(name) > kMaxNameLength) return "Bladnamnet får vara högst 31 tecken långt.";
  if (name.find_first_of(":\\/?*[]") != std::string_view::npos) {
    return "Bladnamnet får inte innehålla något av tecknen : \\ / ? * [ ].";
  }
  if (name.front() == '\'' || name.back() == '\'')
    return "Bladnamnet får inte börja eller sluta med apostrof.";
  if (base::EqualsIgnoreCase(name, "History")) return "Namnet History är reserverat.";
  if (taken(name)) return "Det finns redan ett blad med namnet " + std::string(name) + ".";
  return std::nullopt;
}

std::string DefaultCopyName(std::string_view source, const std::vector<std::string>& existing) {
  return DefaultCopyName(source,
                         [&](std::string_view candidate) { return IsTaken(candidate, existing, -1); });
}

std::string DefaultCopyName(std::string_view source, const SheetNameTaken& taken) {
  std::string_view base = source;
  // A copy of "Mall (2)" is "Mall (3)", not "Mall (2) (2)".
  if (base.size() > 3 && base.back() == ')') {
    const auto open = base.rfind(" (");
    if (open != std::string_view::npos && open + 2 < base.size() - 1 &&
        std::all_of(base.begin() + static_cast<std::ptrdiff_t>(open) + 2, base.end() - 1,
                    [](char c) { return c >= '0' && c <= '9'; })) {
      base = base.substr(0, open);
    }
  }
  for (int n = 2;; ++n) {
    const std::string suffix = " (" + std::to_string(n) + ")";
    const std::string candidate =
        std::string(base::CutToUtf16Units(base, kMaxNameLength - suffix.size())) + suffix;
    if (!taken(candidate)) return candidate;
  }
}

std::string QuoteSheetNameForFormula(std::string_view name) {
  bool needsQuotes = name.empty() || (name.front() >= '0' && name.front() <= '9');
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (!(std::isalnum(byte) || c == '_' || c == '.' || byte >= 0x80)) needsQuotes = true;
  }
  // A name that reads as a cell address ("A1", "R1C1") would be taken for one.
  if (!needsQuotes && ParseCellAddress(name).has_value()) needsQuotes = true;
  if (!needsQuotes && LooksLikeR1C1(name)) needsQuotes = true;
  if (!needsQuotes && (base::EqualsIgnoreCase(name, "TRUE") || base::EqualsIgnoreCase(name, "FALSE"))) {
    needsQuotes = true;
  }
  if (!needsQuotes) return std::string(name);
  std::string quoted = "'";
  for (const char c : name) {
    quoted += c;
    if (c == '\'') quoted += '\'';
  }
  return quoted + "'";
}

}  // namespace sw::excel
