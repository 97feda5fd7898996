#pragma once
// Text as SpreadsheetML stores it: characters XML cannot hold are written as _xHHHH_.
#include <string>
#include <string_view>

namespace sw::excel {

std::string EncodeCellText(std::string_view text);
std::string DecodeCellText(std::string_view stored);

}  // namespace sw::excel
