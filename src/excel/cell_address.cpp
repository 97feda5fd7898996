#include "excel/cell_address.h"

#include "excel/engine.h"

namespace sw::excel {

std::optional<CellAddress> ParseCellAddress(std::string_view text) {
  std::size_t i = 0;
  if (i < text.size() && text[i] == '$') ++i;
  int column = 0;
  const std::size_t letters = i;
  while (i < text.size() && i - letters < 4) {
    const char c = text[i];
    if (c >= 'a' && c <= 'z') {
      column = column * 26 + (c - 'a' + 1);
    } else if (c >= 'A' && c <= 'Z') {
      column = column * 26 + (c - 'A' + 1);
    } else {
      break;
    }
    ++i;
  }
  if (i == letters || column > kMaxColumns) return std::nullopt;
  if (i < text.size() && text[i] == '$') ++i;
  long row = 0;
  const std::size_t digits = i;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9' && i - digits < 8) {
    row = row * 10 + (text[i] - '0');
    ++i;
  }
  if (i == digits || i != text.size() || row < 1 || row > kMaxRows) return std::nullopt;
  return CellAddress{static_cast<int>(row), column};
}

std::string ColumnName(int column) {
  std::string name;
  while (column > 0) {
    const int digit = (column - 1) % 26;
    name.insert(name.begin(), static_cast<char>('A' + digit));
    column = (column - 1) / 26;
  }
  return name;
}

std::string FormatCellAddress(int row, int column) {
  return ColumnName(column) + std::to_string(row);
}

}  // namespace sw::excel
