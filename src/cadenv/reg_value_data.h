#pragma once
// Windows stores string values with their terminating NUL characters; RegistryValue holds the text
// without them. These helpers convert between the two, shared by the .reg reader/writer and the
// Win32 registry.
#include <string>
#include <string_view>

#include "cadenv/registry.h"

namespace sw::cadenv {

// REG_SZ, REG_EXPAND_SZ and REG_MULTI_SZ: the types whose data is text.
bool IsTextType(ValueType type);

// Decoded string data (UTF-8, terminators still on) to the text RegistryValue keeps: one trailing
// NUL is dropped, and for REG_MULTI_SZ a second one (the list's end marker).
std::string StripTerminators(ValueType type, std::string text);

// The UTF-16LE bytes Windows stores for a text value, terminators included.
std::string Utf16DataFromText(ValueType type, std::string_view text);

}  // namespace sw::cadenv
