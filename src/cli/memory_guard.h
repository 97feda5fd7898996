#pragma once
// A command that runs out of memory (a huge dump or template, an address-space limit) ends with the
// program's message and exit code 1 instead of an abort.
#include <functional>
#include <ostream>
#include <string_view>

namespace sw::cli {

// Runs `command` and returns its exit code; on exhausted memory writes
// "Fel: 7 - Slut på minne vid <doing>." to `err` and returns 1.
int RunGuardingMemory(std::ostream& err, std::string_view doing, const std::function<int()>& command);

}  // namespace sw::cli
