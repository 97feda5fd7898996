#pragma once
// Running programs that share no code with ours (python3 with openpyxl, LibreOffice, the Open XML
// SDK validator) on files the tests wrote. A test whose tool is missing fails: a check that cannot run is no pass.
#include <filesystem>
#include <string>
#include <vector>

namespace sw::testing {

struct CommandResult {
  int status = -1;     // the exit status; -1 when the command could not run or was killed
  std::string output;  // standard output and standard error together
};

// Runs `command` through the shell.
CommandResult RunCommand(const std::string& command);
// `text` as one shell word.
std::string Quote(const std::string& text);
// Runs `/usr/bin/python3 script arguments...`, each argument quoted.
CommandResult RunPython(const std::filesystem::path& script, const std::vector<std::string>& arguments);

bool HavePython();
bool HaveOpenpyxl();
bool HaveLibreOffice();

// The number of errors ooxml-validate reports for `file`; a test failure when its output cannot
// be read.
int ValidatorErrors(const std::filesystem::path& validator, const std::filesystem::path& file);

}  // namespace sw::testing
