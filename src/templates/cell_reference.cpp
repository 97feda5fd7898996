#include "templates/cell_reference.h"

#include <string>

#include "base/strings.h"
#include "base/text_codec.h"

namespace sw::templates {
namespace {

// Upper-casing as the Windows-1252 code page knows it (including the Latin-1 letters).
int UpperCode(char c) {
  const int code = static_cast<unsigned char>(c);
  if ((code >= 'a' && code <= 'z') || (code >= 0xE0 && code <= 0xFE && code != 0xF7)) return code - 32;
  return code;
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

CellReference ParseCellReference(std::string_view text) {
  const std::string ansi = base::EncodeWindows1252(text);
  std::size_t digit = 0;
  while (digit < ansi.size() && !IsDigit(ansi[digit])) ++digit;
  if (digit == ansi.size() || (digit != 1 && digit != 2)) return {};

  const std::string_view rowText = base::TrimSpaces(std::string_view(ansi).substr(digit));
  int row = 0;
  for (char c : rowText) {
    if (!IsDigit(c)) return {};
    row = row * 10 + (c - '0');
    if (row > 32767) return {};
  }

  CellReference reference;
  reference.row = row;
  reference.col =
      digit == 1 ? UpperCode(ansi[0]) - 64 : (UpperCode(ansi[0]) - 64) * 26 + (UpperCode(ansi[1]) - 64);
  return reference;
}

}  // namespace sw::templates
