#pragma once
// Loading the report dump named in the main window's dump picker into the preview's report table,
// with the clean-ups the settings ask for. The window supplies what only it has through the context.
#include <functional>
#include <string>

#include "base/outcome.h"
#include "report/dump_reader.h"
#include "report/report_table.h"
#include "settings/settings.h"

namespace sw::report {

struct PreviewContext {
  std::string dumpPath;     // the dump picker's text (UTF-8), as the user sees it; may be empty
  bool refreshing = false;  // the pickers are being filled: a load now would be thrown away
  settings::Settings& settings;
  LoadProgress* progress = nullptr;  // busy state and progress bar; none in batch use
  // After the reading pass: column widths and auto-size (GUI only).
  std::function<void()> layoutColumns;
  // At the very end, in this order: re-read the template's page layout, then draw the page breaks.
  std::function<void()> reloadTemplateLayout;
  std::function<void()> showPageBreaks;
};

// Cuts the table to its heading row and reads the dump into it; then, when "UseSlashTwo" is exactly
// "0" removes "/2" endings, when "IncludeEmptyRows" is exactly "0" removes empty rows, and runs the
// two end hooks. Does nothing at all while `refreshing`. An empty path leaves the heading row alone
// silently; a missing file is reported with "Hittar ej filen ...", a file that cannot be read (a
// folder among them) with "Kan ej läsa filen ..." or why it cannot; neither runs the clean-ups or hooks.
enum class PreviewResult {
  kLoaded,      // read (possibly with no report rows at all)
  kSkipped,     // refreshing: nothing done
  kNoDump,      // the picker's text is empty: only the heading row is left
  kNotFound,    // "Hittar ej filen ..."
  kUnreadable,  // why the file could not be read
};

// The notices are the caller's to tell, after the load; the window ignores the status, the command
// line turns it into its exit status.
base::Outcome<PreviewResult> PreviewVoltDump(ReportTable& table, const PreviewContext& context);

}  // namespace sw::report
