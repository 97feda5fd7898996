#pragma once
// The two tidy-ups of a loaded report. The load runs them when the settings ask for it; the menu
// toggles and the options dialog run them on the table as it stands when an option is switched off.
#include "report/report_table.h"

namespace sw::report {

// Removes every report row whose cells hold nothing but spaces, whatever its colour or pictures (so
// also the blank title row the reader puts before the first data line). The heading row stays.
void CleanupEmptyRows(ReportTable& table);

// Removes one trailing "/2" from every report cell outside column 0 (column 0 names placements and
// keeps its texts). Nothing is trimmed afterwards: "A /2" becomes "A ".
void CleanupSlashTwo(ReportTable& table);

}  // namespace sw::report
