#pragma once
// The repair of the outer connection table's export ("Justera fel i exportfil"): some installations
// write report FBLTAY without its empty leading column, so the placement names stand in the wrong
// column. The repair changes only the loaded table, never the dump file.
#include <string_view>

#include "base/environment.h"
#include "base/notice.h"
#include "report/report_table.h"

namespace sw::preview {

// Whether the repair is offered: (the current report is "FBLTAY" ignoring case, or `force`) and
// (VOLTARIS.INI has a non-empty [CNCHSCR] section, or `force`). The refresh passes force = false, the
// command force = true.
bool ExportRepairOffered(bool force, std::string_view currentReportId, const base::Environment& environment);

// The Yes/No question the repair is offered with. On Yes the caller inserts the column, runs the
// template match check and (for the command) redraws the page-break marks.
base::Notice ExportRepairQuestion();

// The repair itself: an empty column 0, each green row's text moved into it, column 1's colour copied
// over on every row.
void InsertLeadingColumn(report::ReportTable& table);

}  // namespace sw::preview
