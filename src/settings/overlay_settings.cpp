#include "settings/overlay_settings.h"

#include "base/strings.h"

namespace sw::settings {

void OverlaySettings::Override(std::string_view key, std::string value, std::string_view section) {
  for (auto& entry : overrides_) {
    if (base::EqualsIgnoreCase(entry.key, key) && base::EqualsIgnoreCase(entry.section, section)) {
      entry.value = std::move(value);
      return;
    }
  }
  overrides_.push_back(Entry{std::string(section), std::string(key), std::move(value)});
}

const OverlaySettings::Entry* OverlaySettings::Find(std::string_view key, std::string_view section) const {
  for (const auto& entry : overrides_) {
    if (base::EqualsIgnoreCase(entry.key, key) && base::EqualsIgnoreCase(entry.section, section))
      return &entry;
  }
  return nullptr;
}

std::string OverlaySettings::GetAppSetting(std::string_view key, std::string_view defaultValue,
                                           std::string_view section, std::string_view appName) {
  const bool ownProduct = appName.empty() || base::EqualsIgnoreCase(appName, kProductName);
  if (const Entry* entry = ownProduct ? Find(key, section) : nullptr) {
    // An empty text reads as the default, as it does from the store.
    return entry->value.empty() ? std::string(defaultValue) : entry->value;
  }
  return underlying_.GetAppSetting(key, defaultValue, section, appName);
}

void OverlaySettings::SaveAppSetting(std::string_view key, std::string_view value, std::string_view section) {
  if (!readOnly_) underlying_.SaveAppSetting(key, value, section);
}

void OverlaySettings::DeleteAppSetting(std::string_view key, std::string_view section) {
  if (!readOnly_) underlying_.DeleteAppSetting(key, section);
}

}  // namespace sw::settings
