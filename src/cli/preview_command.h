#pragma once
// `sheetwright-cli preview DUMP`: loads a report dump as the preview window does and prints the table.
#include <iosfwd>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace sw::cli {

struct PreviewOptions {
  std::string dump;
  bool json = false;
  bool summary = false;
  std::optional<std::string> includeEmptyRows;  // "0" or "1": overrides the stored setting for this run
  std::optional<std::string> slashTwo;
};

void AddPreviewCommand(CLI::App& app, PreviewOptions& options);

// Exit status: 0 loaded, 1 the run ended on a message, 2 bad usage.
int RunPreview(const PreviewOptions& options, std::ostream& out, std::ostream& err);

}  // namespace sw::cli
