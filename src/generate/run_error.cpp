#include "generate/run_error.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

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

std::string WriteRefusalCause(std::string_view windowsPath) {
  namespace fs = std::filesystem;
  if (windowsPath.empty()) return {};
  const fs::path path = base::ResolveWindowsPath(windowsPath);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  std::error_code error;
  if (fs::is_directory(folder, error)) {
    // Trying is the only answer every platform gives alike (ACLs, read-only mounts, network shares).
    std::random_device random;
    const fs::path probe = folder / ("~sheetwright-skrivprov-" + std::to_string(random()));
    bool writable = false;
    {
      std::ofstream out(probe, std::ios::binary);
      writable = out.is_open();
    }
    if (writable) {
      fs::remove(probe, error);
    } else {
      const std::u8string shown = fs::path(folder).make_preferred().u8string();
      return "Mappen " + std::string(shown.begin(), shown.end()) +
             " går inte att skriva i (skrivskyddad eller utan skrivrättighet).";
    }
  }
  const auto status = fs::status(path, error);
  if (!error && fs::is_regular_file(status) && (status.permissions() & fs::perms::owner_write) == fs::perms::none) {
    return "Filen " + base::DisplayPath(windowsPath) + " är skrivskyddad.";
  }
  return {};
}

std::string EnginePath(std::string_view windowsPath) {
  const auto text = base::ResolveWindowsPath(windowsPath).u8string();
  return std::string(text.begin(), text.end());
}

}  // namespace sw::generate
