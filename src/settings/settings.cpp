#include "settings/settings.h"

#include "cadenv/registry.h"

namespace sw::settings {

using cadenv::RootKey;

RegistrySettings::RegistrySettings(cadenv::Registry& registry) : registry_(registry) {}

std::string RegistrySettings::KeyPath(std::string_view section, std::string_view appName) {
  std::string path = "Software\\";
  path += kCompanyName;
  path += '\\';
  path += appName.empty() ? kProductName : appName;
  if (!section.empty()) {
    path += '\\';
    path += section;
  }
  return path;
}

std::string RegistrySettings::GetAppSetting(std::string_view key, std::string_view defaultValue,
                                            std::string_view section, std::string_view appName) {
  return cadenv::ReadRegistryValue(registry_, RootKey::kCurrentUser, KeyPath(section, appName), key,
                                   defaultValue);
}

void RegistrySettings::SaveAppSetting(std::string_view key, std::string_view value,
                                      std::string_view section) {
  registry_.SetStringValue(RootKey::kCurrentUser, KeyPath(section), key, value);
}

void RegistrySettings::DeleteAppSetting(std::string_view key, std::string_view section) {
  registry_.DeleteValue(RootKey::kCurrentUser, KeyPath(section), key);
}

}  // namespace sw::settings
