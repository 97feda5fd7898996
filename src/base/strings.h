#pragma once
// Small text helpers with the Windows semantics the program relies on.
#include <string>
#include <string_view>
#include <vector>

namespace sw::base {

// VB's Trim: removes leading and trailing spaces only.
std::string_view TrimSpaces(std::string_view text);

// Removes the blanks the Windows profile and registry readers strip: space, tab, CR, LF, VT, FF.
std::string_view TrimBlanks(std::string_view text);

// ASCII letters only; every other byte, UTF-8 included, is kept.
constexpr char AsciiUpperChar(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char AsciiLowerChar(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string AsciiUpper(std::string_view text);
std::string AsciiLower(std::string_view text);

// Case-insensitive comparison as Windows compares key, value and file names: ASCII letters and the
// Latin-1 letters of UTF-8 text fold together (å/Å, ä/Ä, ö/Ö).
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
// <0, 0, >0 like strcmp, ignoring case as above.
int CompareIgnoreCase(std::string_view a, std::string_view b);

// Every occurrence of `from` (not empty) replaced by `to`, left to right without overlaps.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

// Position of the first occurrence of `wanted` in `text` ignoring case (as EqualsIgnoreCase), or npos.
std::size_t FindIgnoreCase(std::string_view text, std::string_view wanted);

// The longest start of UTF-8 `text` that takes at most `units` UTF-16 units, as Windows and Excel count
// lengths (a character beyond the Basic Multilingual Plane takes two), without splitting a character.
std::string_view CutToUtf16Units(std::string_view text, std::size_t units);

// Splits at every occurrence of `separator`; an empty text gives one empty piece.
std::vector<std::string_view> Split(std::string_view text, char separator);

}  // namespace sw::base
