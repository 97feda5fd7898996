#pragma once
// Settings the window reads as whole numbers.
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace sw::session {

// The stored text as a 16-bit number; a text that is no number falls back to `defaultValue`'s number,
// so a damaged value behaves like a missing one.
int IntegerSetting(settings::Settings& settings, std::string_view key, std::string_view defaultValue);

// `text` left-padded with "0" to at least `length` characters.
std::string PadSheetNumber(std::string text, int length);

}  // namespace sw::session
