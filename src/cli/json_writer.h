#pragma once
// Just enough JSON output for the command line's machine-readable modes.
#include <string>
#include <string_view>

namespace sw::cli {

// `text` as a JSON string literal, quotes included; text that is not UTF-8 is read as Windows-1252.
std::string JsonString(std::string_view text);

}  // namespace sw::cli
