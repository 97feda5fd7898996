#pragma once
// The main window's remaining user actions as operations on the Workspace, so that the window's
// widgets only forward what the user did and show what came of it: the preview edits on a row, the
// commit of a field box, choosing a dump file by hand, the figures of the status bar and the workbook
// a finished generation leaves showing.
#include <optional>
#include <string>
#include <string_view>

#include "app/settings.h"
#include "app/workspace/workspace.h"
#include "base/dialogs.h"
#include "generate/generate_workbook.h"
#include "template/preview_edits.h"
#include "template/short_date.h"

namespace sw::workspace {

// ShowPageBreaks for the template on screen, as a load ends with it.
void ShowPageBreaks(Workspace& window, base::Dialogs& dialogs, app::Settings& settings);

// A preview edit on report row `row` (popup 951–953 or a double-click); the insert and the removal of
// a manual break redraw the marks, deleting a placement does not.
void RunPreviewEdit(Workspace& window, int row, templ::PreviewAction action, base::Dialogs& dialogs,
                    app::Settings& settings);

// The text box `index` loses the focus or gets Enter: "." becomes today's date. Returns the text the
// box then shows.
std::string CommitFieldText(Workspace& window, int index,
                            const templ::ShortDateSource& today = templ::TodayShortDate);

// Command 706: the file dialog for a dump; a chosen file goes into the dump picker, which loads it.
// False when the dialog was cancelled.
bool ChooseReportDumpFile(Workspace& window, base::Dialogs& dialogs, app::Settings& settings,
                          std::string_view programFolder);

// What the status bar counts for the user.
struct PreviewSummary {
  int rows = 0;        // report rows below the heading
  int placements = 0;  // placement heads
  // The pages generation would make with the chosen template (its own INI check and page length);
  // nothing without a template or when that check would stop generation.
  std::optional<int> pages;
};
PreviewSummary SummarizePreview(const Workspace& window);

// The workbook Excel is left showing after a run: the target, or in single-sheet mode the last page
// file written. Empty when the run wrote nothing.
std::string WorkbookLeftOpen(const gen::GenerationOutcome& outcome, bool singleSheet,
                             std::string_view target);

}  // namespace sw::workspace
