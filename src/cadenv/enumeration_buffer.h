#pragma once
// Windows enumerates a key's subkeys and values into buffers of 2048 characters for the name and the
// same for the data; an entry that does not fit fails, and the program's enumeration reads that as
// the end of the key ("Not Found"). The portable store answers the same way, so that a settings file
// behaves alike on both systems.
#include <cstddef>
#include <string_view>

#include "cadenv/registry.h"

namespace sw::cadenv {

inline constexpr std::size_t kEnumerationBufferChars = 2048;

// False when the subkey name would not fit the enumeration's name buffer with its terminator.
bool SubkeyNameFitsEnumeration(std::string_view name);
// False when the value's name or its data as Windows stores it would not fit.
bool ValueFitsEnumeration(const RegistryValue& value);

}  // namespace sw::cadenv
