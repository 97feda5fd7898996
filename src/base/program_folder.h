#pragma once
#include <filesystem>

namespace sw::base {

// The folder that holds the running executable (the start log and default dialog folders live there).
std::filesystem::path ProgramFolder();

}  // namespace sw::base
