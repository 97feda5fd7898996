#pragma once
// VB's UCase on UTF-8 text: ASCII letters and the Latin-1 letters (å → Å, é → É) are upper-cased;
// every other byte is kept.
#include <string>
#include <string_view>

namespace sw::base {

std::string UpperCase(std::string_view utf8);

// Removes every occurrence of `what` from `text` in one left-to-right pass, as VB's Replace with "".
std::string RemoveAll(std::string_view text, std::string_view what);

}  // namespace sw::base
