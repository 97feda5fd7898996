#pragma once
// The repair of the outer connection table's export ("Justera fel i exportfil"): some installations
// write report FBLTAY without its empty leading column, so the placement names stand in the wrong
// column. The repair changes only the loaded table, never the dump file.
#include <functional>
#include <string_view>

#include "base/dialogs.h"
#include "base/environment.h"
#include "report/report_table.h"

namespace sw::preview {

// Offers the repair when (the current report is "FBLTAY" ignoring case, or `force`) and (VOLTARIS.INI
// has a non-empty [CNCHSCR] section, or `force`); otherwise returns false without a word. On Yes to
// "Infoga kolumn i yttre förbindningstabell?" inserts an empty column 0, moves each green row's text
// into it (with column 1's colour copied over on every row) and runs `recheckTemplate`, the template
// match check. Returns whether the table was changed. The refresh passes force = false, the command
// force = true (and redraws the page-break marks afterwards).
bool AdjustExportFile(bool force, std::string_view currentReportId, const base::Environment& environment,
                      base::Dialogs& dialogs, report::ReportTable& table,
                      const std::function<void()>& recheckTemplate = {});

// The column insertion itself, without the question.
void InsertLeadingColumn(report::ReportTable& table);

}  // namespace sw::preview
