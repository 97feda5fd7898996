#include "base/own_temp_files.h"

#include <regex>
#include <system_error>

namespace sw::base {

std::string OwnTempSuffix(unsigned serial) {
  std::string suffix = ".sheetwright-" + std::to_string(CurrentProcessId());
  if (serial != 0) suffix += "-" + std::to_string(serial);
  return suffix + ".tmp";
}

unsigned long long OwnTempFileProcess(std::string_view fileName) {
  static const std::regex pattern(R"(^.+\.sheetwright-([0-9]{1,19})(-[0-9]{1,19})?\.tmp$)");
  std::match_results<std::string_view::const_iterator> match;
  if (!std::regex_match(fileName.begin(), fileName.end(), match, pattern)) return 0;
  try {
    return std::stoull(match[1].str());
  } catch (const std::out_of_range&) {
    return 0;
  }
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
