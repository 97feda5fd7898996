#pragma once
// The Windows registry through the wide-character API; names and text cross as UTF-8.
#include "cadenv/registry.h"

namespace sw::cadenv {

class Win32Registry final : public Registry {
 public:
  std::optional<RegistryValue> QueryValue(RootKey root, std::string_view keyPath,
                                          std::string_view valueName) override;
  // Enumeration uses name and data buffers of 2048 characters; a longer name or data reads as the end.
  std::optional<std::string> SubkeyAt(RootKey root, std::string_view keyPath, std::size_t index) override;
  std::optional<RegistryValue> ValueAt(RootKey root, std::string_view keyPath, std::size_t index) override;
  bool SetStringValue(RootKey root, std::string_view keyPath, std::string_view valueName,
                      std::string_view text) override;
  bool DeleteValue(RootKey root, std::string_view keyPath, std::string_view valueName) override;
};

}  // namespace sw::cadenv
