#pragma once
// The program carries file names as UTF-8 text; std::filesystem::path reads a plain char string in the
// system's code page, so a name with "å" would come out wrong on Windows unless it goes through here.
#include <filesystem>
#include <string_view>

namespace sw::base {

std::filesystem::path PathFromUtf8(std::string_view utf8);

}  // namespace sw::base
