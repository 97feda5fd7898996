#include "cadenv/registry.h"

#include <cstdio>

namespace sw::cadenv {

std::string ReadRegistryValue(Registry& registry, RootKey root, std::string_view keyPath,
                              std::string_view valueName, std::string_view defaultText) {
  const auto value = registry.QueryValue(root, keyPath, valueName);
  if (!value || value->type != ValueType::kString) return std::string(defaultText);
  std::string text = value->data.substr(0, value->data.find('\0'));
  if (text.empty()) return std::string(defaultText);
  return text;
}

std::string EnumRegistryKey(Registry& registry, RootKey root, std::string_view keyPath, std::size_t index) {
  auto name = registry.SubkeyAt(root, keyPath, index);
  if (!name) return std::string(kNotFound);
  return *name;
}

EnumeratedValue EnumRegistryValue(Registry& registry, RootKey root, std::string_view keyPath,
                                  std::size_t index) {
  EnumeratedValue entry;
  entry.index = index;
  const auto value = registry.ValueAt(root, keyPath, index);
  if (!value) {
    entry.name = entry.data = std::string(kNotFound);
    return entry;
  }
  entry.name = value->name;
  if (value->type == ValueType::kDword) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4 && i < value->data.size(); ++i) {
      number |= static_cast<std::uint32_t>(static_cast<unsigned char>(value->data[i])) << (8 * i);
    }
    char digits[16];
    std::snprintf(digits, sizeof digits, "%03u", number);
    entry.data = digits;
  } else if (value->type == ValueType::kString || value->type == ValueType::kExpandString) {
    // Enumeration takes the data to its length less the terminator, so unlike the single-value read
    // a NUL inside a string stays; RegistryValue already holds string data without its terminator.
    entry.data = value->data;
  } else if (value->type == ValueType::kMultiString) {
    // The raw list ends in two NULs, of which the length less one keeps the first.
    entry.data = value->data + '\0';
  } else {
    // The same cut applies to data that has no terminator: its last byte is lost, as it always was.
    entry.data = value->data.substr(0, value->data.empty() ? 0 : value->data.size() - 1);
  }
  return entry;
}

}  // namespace sw::cadenv
