#include "base/own_temp_files.h"

#include <optional>
#include <system_error>

namespace sw::base {

std::string OwnTempSuffix(unsigned serial) {
  std::string suffix = ".sheetwright-" + std::to_string(CurrentProcessId());
  if (serial != 0) suffix += "-" + std::to_string(serial);
  return suffix + ".tmp";
}

namespace {

// A run of 1 to 19 digits, as a number; nullopt for anything else (or a number past the type).
std::optional<unsigned long long> Digits(std::string_view text) {
  if (text.empty() || text.size() > 19) return std::nullopt;
  unsigned long long value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  return value;
}

}  // namespace

// "<name>.sheetwright-<process>[-<serial>].tmp". Read by hand: a single-sheet run asks this for every
// file it writes, twice a page.
unsigned long long OwnTempFileProcess(std::string_view fileName) {
  constexpr std::string_view kMark = ".sheetwright-";
  constexpr std::string_view kEnd = ".tmp";
  if (!fileName.ends_with(kEnd)) return 0;
  fileName.remove_suffix(kEnd.size());
  const auto mark = fileName.rfind(kMark);
  if (mark == std::string_view::npos || mark == 0) return 0;
  std::string_view numbers = fileName.substr(mark + kMark.size());
  if (const auto dash = numbers.find('-'); dash != std::string_view::npos) {
    if (!Digits(numbers.substr(dash + 1))) return 0;
    numbers = numbers.substr(0, dash);
  }
  return Digits(numbers).value_or(0);
}

bool IsThisProcessTempFile(const std::filesystem::path& path) {
  const auto name = path.filename().u8string();
  return OwnTempFileProcess(std::string_view(reinterpret_cast<const char*>(name.data()), name.size())) ==
         CurrentProcessId();
}

int RemoveAbandonedTempFiles(const std::filesystem::path& folder) {
  int removed = 0;
  std::error_code error;
  std::filesystem::directory_iterator entries(folder.empty() ? "." : folder, error);
  if (error) return 0;
  for (const auto& entry : entries) {
    std::error_code entryError;
    if (!entry.is_regular_file(entryError)) continue;
    const auto name = entry.path().filename().u8string();
    const auto process =
        OwnTempFileProcess(std::string_view(reinterpret_cast<const char*>(name.data()), name.size()));
    if (process == 0 || process == CurrentProcessId() || ProcessRuns(process)) continue;
    if (std::filesystem::remove(entry.path(), entryError)) ++removed;
  }
  return removed;
}

}  // namespace sw::base
