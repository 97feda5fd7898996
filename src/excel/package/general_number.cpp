#include "excel/package/general_number.h"

#include <charconv>
#include <cmath>

namespace sw::excel {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::optional<GeneralNumber> ReadGeneralNumber(std::string_view text) {
  std::size_t i = 0;
  std::string number;  // what from_chars reads: no "+", which it refuses
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    if (text[i] == '-') number += '-';
    ++i;
  }
  int digits = 0;
  bool point = false;
  bool decimals = false;
  for (; i < text.size(); ++i) {
    if (IsDigit(text[i])) {
      ++digits;
      decimals = decimals || point;
    } else if (text[i] == '.' && !point) {
      point = true;
    } else {
      break;
    }
    number += text[i];
  }
  if (digits == 0 || digits > 15) return std::nullopt;

  auto format = BuiltInNumberFormat::kGeneral;
  if (i < text.size() && (text[i] == 'E' || text[i] == 'e')) {
    number += 'e';
    ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) number += text[i++];
    const std::size_t first = i;
    while (i < text.size() && IsDigit(text[i]) && i - first < 3) number += text[i++];
    if (i == first) return std::nullopt;
    format = BuiltInNumberFormat::kScientific;
  } else if (i < text.size() && text[i] == '%') {
    ++i;
    format = decimals ? BuiltInNumberFormat::kPercentDecimals : BuiltInNumberFormat::kPercent;
  }
  if (i != text.size()) return std::nullopt;

  double value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec != std::errc() || read.ptr != number.data() + number.size()) return std::nullopt;
  if (format == BuiltInNumberFormat::kPercent || format == BuiltInNumberFormat::kPercentDecimals)
    value /= 100;
  if (!std::isfinite(value)) return std::nullopt;
  if (value == 0) value = 0;  // no "-0" in the file

  char buffer[32];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15);
  return GeneralNumber{std::string(buffer, written.ptr), format};
}

}  // namespace sw::excel
