#pragma once
// The walk over the CAD system's registry keys that gathers every directory it names under one value
// name ("RDS", "USER", "VOLTID"), wherever below its key the installation put it.
#include <string>
#include <string_view>
#include <vector>

#include "cadenv/registry.h"

namespace sw::cadenv {

// Windows allows 512 key levels; a deeper tree can only come from a broken store, so the walk stops
// there instead of recursing without end.
inline constexpr int kMaxRegistryWalkDepth = 512;

// The registry value list: entry 0 is an empty placeholder, the values found stand at 1, 2, … in the
// order found, no two equal ignoring case.
using RegistryValueList = std::vector<std::string>;

// Walks `keyPath` under `root` and every key below it. A key's values come before its subkeys, and
// subkeys are walked depth-first in enumeration order; a value counts when its name equals `valueName`
// exactly (case-sensitive: "rds" is not "RDS"), and its data is appended unless an entry equal to it
// ignoring case is already there (the empty placeholder included, so empty data never appears). Subkey
// paths are formed as the parent path, the subkey's name and "\".
RegistryValueList CollectRegistryValues(Registry& registry, RootKey root, std::string_view keyPath,
                                        std::string_view valueName);

}  // namespace sw::cadenv
