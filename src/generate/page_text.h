#pragma once
// The texts a page shows for its own number and the next one.
#include <string>
#include <string_view>

namespace sw::generate {

// `number` in decimal, padded on the left with "0" until it is `minimumLength` characters long;
// longer numbers are kept whole (start 01: "01" … "09", "10", … "100").
std::string PageText(int number, int minimumLength);

// VB's Len on UTF-8 text: the number of characters.
int CharacterCount(std::string_view utf8);

}  // namespace sw::generate
