#include "generate/run_error.h"

#include <filesystem>
#include <limits>

#include "base/error_numbers.h"
#include "base/strings.h"
#include "base/windows_path.h"

namespace sw::generate {

void RaiseRunError(int number) {
  throw base::NumberedError(number);
}

std::int16_t Int16(long long value) {
  if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max()) {
    RaiseRunError(kOverflow);
  }
  return static_cast<std::int16_t>(value);
}

std::int16_t StartNumberValue(std::string_view text) {
  std::string_view digits = base::TrimSpaces(text);
  bool negative = false;
  if (!digits.empty() && (digits.front() == '+' || digits.front() == '-')) {
    negative = digits.front() == '-';
    digits.remove_prefix(1);
  }
  if (digits.empty()) RaiseRunError(kTypeMismatch);
  long long value = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') RaiseRunError(kTypeMismatch);
    // Past the 16-bit range already; keep reading only to tell 13 from 6.
    if (value <= 100000) value = value * 10 + (c - '0');
  }
  return Int16(negative ? -value : value);
}

void CheckTargetReplaceable(std::string_view windowsPath) {
  std::error_code error;
  if (std::filesystem::is_directory(base::ResolveWindowsPath(windowsPath), error))
    RaiseRunError(kPathFileAccess);
}

std::string EnginePath(std::string_view windowsPath) {
  const auto text = base::ResolveWindowsPath(windowsPath).u8string();
  return std::string(text.begin(), text.end());
}

}  // namespace sw::generate
