#include "external_tools.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <iostream>
#include <regex>

namespace sw::testing {

CommandResult RunCommand(const std::string& command) {
  CommandResult result;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return result;
  std::array<char, 4096> buffer;
  while (std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) result.output += buffer.data();
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::string Quote(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

CommandResult RunPython(const std::filesystem::path& script, const std::vector<std::string>& arguments) {
  std::string command = "/usr/bin/python3 " + Quote(script.string());
  for (const auto& argument : arguments) command += " " + Quote(argument);
  return RunCommand(command);
}

bool HavePython() {
  return RunCommand("/usr/bin/python3 -c pass").status == 0;
}

// openpyxl reads no pictures without Pillow, so a check of a page's images needs both.
bool HaveOpenpyxl() {
  return RunCommand("/usr/bin/python3 -c 'import openpyxl, PIL'").status == 0;
}

bool HaveLibreOffice() {
  return RunCommand("command -v soffice").status == 0;
}

int ValidatorErrors(const std::filesystem::path& validator, const std::filesystem::path& file) {
  const auto result =
      RunCommand("timeout 120 " + Quote(validator.string()) + " -f xlsx " + Quote(file.string()));
  std::smatch match;
  if (!std::regex_search(result.output, match, std::regex("Found (\\d+) error"))) {
    ADD_FAILURE() << "unexpected validator output for " << file << ":\n" << result.output;
    return -1;
  }
  if (match[1] != "0") std::cerr << file << ":\n" << result.output << "\n";
  return std::stoi(match[1]);
}

}  // namespace sw::testing
