#pragma once
// `sheetwright-cli preview DUMP`: loads a report dump as the preview window does and prints the table.
// With --template the workbook is paired with its INI file first, as the main window does at start,
// so the headings, column count and page-break marks are the ones the user would see.
#include <iosfwd>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace sw::cli {

struct PreviewOptions {
  std::string dump;
  std::optional<std::string> templateWorkbook;
  bool json = false;
  bool summary = false;
  bool fixExport = false;  // run the export-file repair as its command does (asks; --yes answers)
  bool yes = false;
  // "0" or "1": override the stored settings for this run only.
  std::optional<std::string> includeEmptyRows;
  std::optional<std::string> slashTwo;
  std::optional<std::string> showPageBreaks;
};

void AddPreviewCommand(CLI::App& app, PreviewOptions& options);

// Exit status: 0 loaded, 1 the run ended on a message, 2 bad usage.
int RunPreview(const PreviewOptions& options, std::ostream& out, std::ostream& err);

}  // namespace sw::cli
