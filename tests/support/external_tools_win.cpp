// The outside readers (python3 with openpyxl, LibreOffice, the validator) are the build machine's own
// programs; the Windows build runs under Wine and cannot start them, so every tool reads as missing
// and the cases that need one are left out of its runs by name (tests/CMakeLists.txt).
#include <gtest/gtest.h>

#include "external_tools.h"

namespace sw::testing {

CommandResult RunCommand(const std::string& command) {
  return {-1, "not run in the Windows build: " + command};
}

std::string Quote(const std::string& text) {
  return "\"" + text + "\"";
}

CommandResult RunPython(const std::filesystem::path& script, const std::vector<std::string>&) {
  return RunCommand("python3 " + script.string());
}

bool HavePython() {
  return false;
}

bool HaveOpenpyxl() {
  return false;
}

bool HaveLibreOffice() {
  return false;
}

int ValidatorErrors(const std::filesystem::path&, const std::filesystem::path& file) {
  ADD_FAILURE() << "the validator does not run in the Windows build: " << file;
  return -1;
}

}  // namespace sw::testing
