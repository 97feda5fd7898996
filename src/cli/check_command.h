#pragma once
// `sheetwright-cli check WORKBOOK`: the template checks generation runs, without generating: pairs the
// workbook with its INI file, reads the common fields and validates [Tabs] and [Sheet]. Every message
// goes to stderr; a short summary of the template goes to stdout.
#include <iosfwd>
#include <string>

namespace CLI {
class App;
}

namespace sw::cli {

struct CheckOptions {
  std::string workbook;
};

void AddCheckCommand(CLI::App& app, CheckOptions& options);

// Exit status: 0 generation may run with this template, 1 it may not.
int RunCheck(const CheckOptions& options, std::ostream& out, std::ostream& err);

}  // namespace sw::cli
