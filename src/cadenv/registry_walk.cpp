#include "cadenv/registry_walk.h"

#include <algorithm>

#include "base/strings.h"

namespace sw::cadenv {
namespace {

void WalkKey(Registry& registry, RootKey root, const std::string& keyPath, std::string_view valueName,
             int depth, RegistryValueList& list) {
  for (std::size_t index = 0;; ++index) {
    const EnumeratedValue value = EnumRegistryValue(registry, root, keyPath, index);
    if (value.NotFound()) break;
    if (value.name != valueName) continue;
    const bool known = std::any_of(list.begin(), list.end(), [&](const std::string& entry) {
      return base::EqualsIgnoreCase(entry, value.data);
    });
    if (!known) list.push_back(value.data);
  }
  if (depth >= kMaxRegistryWalkDepth) return;
  for (std::size_t index = 0;; ++index) {
    const std::string subkey = EnumRegistryKey(registry, root, keyPath, index);
    if (subkey == kNotFound) break;
    WalkKey(registry, root, keyPath + subkey + "\\", valueName, depth + 1, list);
  }
}

}  // namespace

RegistryValueList CollectRegistryValues(Registry& registry, RootKey root, std::string_view keyPath,
                                        std::string_view valueName) {
  RegistryValueList list{std::string()};
  WalkKey(registry, root, std::string(keyPath), valueName, 0, list);
  return list;
}

}  // namespace sw::cadenv
