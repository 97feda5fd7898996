#pragma once
// `sheetwright-cli generate`: the "Generera Excel-dokument" command without a window. The dump is
// loaded as the preview loads it, the template is paired with its INI file, the common fields start
// from their INI defaults and take --field values on top, and then the very routine behind the
// window's command runs, with TARGET as the answer to its save dialog.
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace sw::cli {

struct GenerateOptions {
  std::string dump;
  std::string templateWorkbook;
  std::string target;
  std::optional<std::string> start;  // default: the CAD system's REPORT_FIRST, else "1"
  bool singleSheet = false;
  std::vector<std::string> fields;  // "N=TEXT", N from 0 to 29
  bool yes = false;                 // answers the single-sheet warning with OK
  bool open = false;                // opens every workbook written with the system's default application
  std::string engine = "package";   // "package": the built-in engine; "excel": Excel through automation
};

void AddGenerateCommand(CLI::App& app, GenerateOptions& options);

// Prints the path of every workbook written to `out`, messages to `err`.
// Exit status: 0 generated, 1 the run ended on a message, 2 bad usage.
int RunGenerate(const GenerateOptions& options, std::ostream& out, std::ostream& err);

}  // namespace sw::cli
