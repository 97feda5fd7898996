#pragma once
// A file named on the command line: an empty name names no file, and taking the stored choice
// instead would be a silent surprise, so it is a usage error.
#include <CLI/CLI.hpp>

namespace sw::cli {

inline CLI::Validator NotEmptyFileName() {
  return CLI::Validator(
      [](const std::string& value) {
        return value.empty() ? std::string("ett tomt filnamn anger ingen fil") : "";
      },
      "");
}

}  // namespace sw::cli
