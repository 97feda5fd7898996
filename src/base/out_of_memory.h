#pragma once
// Exhausted memory, told as the program tells its numbered errors ("7 - Slut på minne") together with
// what was being done, so the user knows which file or step was too big.
#include <string>
#include <string_view>

namespace sw::base {

// "7 - Slut på minne vid <doing>."
std::string OutOfMemoryMessage(std::string_view doing);

}  // namespace sw::base
