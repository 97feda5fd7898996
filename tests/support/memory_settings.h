#pragma once
// A Settings double held in memory, with the store's read rule (empty reads as the default).
#include <map>
#include <string>
#include <utility>

#include "settings/settings.h"

namespace sw::testing {

class MemorySettings final : public settings::Settings {
 public:
  // (section, key) -> value; section "" is the top level.
  std::map<std::pair<std::string, std::string>, std::string> values;

  std::string GetAppSetting(std::string_view key, std::string_view defaultValue,
                            std::string_view section = {}, std::string_view appName = {}) override {
    (void)appName;
    auto it = values.find({std::string(section), std::string(key)});
    if (it == values.end() || it->second.empty()) return std::string(defaultValue);
    return it->second;
  }
  void SaveAppSetting(std::string_view key, std::string_view value, std::string_view section = {}) override {
    values[{std::string(section), std::string(key)}] = std::string(value);
  }
  void DeleteAppSetting(std::string_view key, std::string_view section = {}) override {
    values.erase({std::string(section), std::string(key)});
  }
};

}  // namespace sw::testing
