#pragma once
// The program's settings: string values under HKEY_CURRENT_USER\Software\<company>\<product>, with an
// optional section (subkey). Read and written at the moment they are used; failures are silent.
#include <string>
#include <string_view>

namespace sw::cadenv {
class Registry;
}

namespace sw::settings {

inline constexpr std::string_view kCompanyName = "ZENT";
inline constexpr std::string_view kProductName = "Sheetwright";

class Settings {
 public:
  virtual ~Settings() = default;
  // The stored REG_SZ text, or `defaultValue` when the value is missing, not REG_SZ or empty.
  virtual std::string GetAppSetting(std::string_view key, std::string_view defaultValue,
                                    std::string_view section = {}, std::string_view appName = {}) = 0;
  virtual void SaveAppSetting(std::string_view key, std::string_view value,
                              std::string_view section = {}) = 0;
  virtual void DeleteAppSetting(std::string_view key, std::string_view section = {}) = 0;
};

// The settings store on a registry.
class RegistrySettings final : public Settings {
 public:
  explicit RegistrySettings(cadenv::Registry& registry);
  std::string GetAppSetting(std::string_view key, std::string_view defaultValue,
                            std::string_view section = {}, std::string_view appName = {}) override;
  void SaveAppSetting(std::string_view key, std::string_view value, std::string_view section = {}) override;
  void DeleteAppSetting(std::string_view key, std::string_view section = {}) override;

  // "Software\ZENT\<appName or product>[\<section>]".
  static std::string KeyPath(std::string_view section, std::string_view appName = {});

 private:
  cadenv::Registry& registry_;
};

}  // namespace sw::settings
