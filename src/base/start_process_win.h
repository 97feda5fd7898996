#pragma once
// Starting a Windows program from its command line, shared by this platform's launchers. Only files
// built for Windows include it.
#include <string>
#include <string_view>

namespace sw::base {

std::wstring WideFromUtf8(std::string_view utf8);

// Starts `utf8CommandLine` (program and arguments as Windows takes them) with its window shown as
// `show` (an SW_ value). Without `wait`: true when it started. With `wait`: true when it started and
// ended with status 0.
bool StartProcess(std::string_view utf8CommandLine, int show, bool wait);

}  // namespace sw::base
