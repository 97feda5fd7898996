#include "cli_runner.h"

#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>

namespace sw::testing {
namespace {

std::string Quote(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

std::string Slurp(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

CliResult CliRunner::Run(const std::vector<std::string>& args) const {
  const auto outFile = folder_ / "stdout.txt";
  const auto errFile = folder_ / "stderr.txt";
  std::string command = "env";
  for (const auto& variable : Variables()) command += " " + Quote(variable);
  command += " " + Quote(SW_CLI_PATH);
  for (const auto& arg : args) command += " " + Quote(arg);
  command += " >" + Quote(outFile.string()) + " 2>" + Quote(errFile.string()) + " </dev/null";
  const int status = std::system(command.c_str());
  CliResult result;
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.out = Slurp(outFile);
  result.err = Slurp(errFile);
  return result;
}

}  // namespace sw::testing
