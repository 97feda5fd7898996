#pragma once
// Settings with some values fixed for one run (for example from the command line): reads of an
// overridden key answer the given text, as if it were stored; everything else, and every write and
// delete, goes to the underlying store, which keeps its own values. Made read-only, writes and deletes
// are dropped: a command that only looks must not change what the window remembers.
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings.h"

namespace sw::settings {

class OverlaySettings final : public Settings {
 public:
  enum class Writes { kPassed, kDropped };
  explicit OverlaySettings(Settings& underlying, Writes writes = Writes::kPassed)
      : underlying_(underlying), readOnly_(writes == Writes::kDropped) {}

  // Key and section match ignoring case, as registry names do. A later override of the same key wins.
  void Override(std::string_view key, std::string value, std::string_view section = {});

  std::string GetAppSetting(std::string_view key, std::string_view defaultValue,
                            std::string_view section = {}, std::string_view appName = {}) override;
  void SaveAppSetting(std::string_view key, std::string_view value, std::string_view section = {}) override;
  void DeleteAppSetting(std::string_view key, std::string_view section = {}) override;

 private:
  struct Entry {
    std::string section;
    std::string key;
    std::string value;
  };
  const Entry* Find(std::string_view key, std::string_view section) const;

  Settings& underlying_;
  bool readOnly_;
  std::vector<Entry> overrides_;
};

}  // namespace sw::settings
