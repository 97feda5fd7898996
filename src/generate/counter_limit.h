#pragma once
// The page numbers and row numbers of a run are counted in 16 bits, as they always were: a report that
// would carry them past 32767 cannot be generated. It is refused before anything is asked or written,
// instead of failing on every page from the 32,767th on.
#include <string>

#include "report/report_table.h"
#include "templates/template_definition.h"

namespace sw::generate {

inline constexpr int kLargestCount = 32767;
// A worksheet holds at most this many manual page breaks (Excel's own limit).
inline constexpr int kManualPageBreakLimit = 1023;

// What a run of `table` with `definition` counts up to.
struct RunExtent {
  int pages = 0;     // pages a normal-length run starts
  int dataRows = 0;  // rows a dynamic-length run writes onto its one sheet
  int pageBreaks = 0;  // manual breaks a dynamic-length run puts between its placements
};

RunExtent MeasureRun(const report::ReportTable& table, const templates::TemplateDefinition& definition);

// Why the run cannot be counted, in the user's words; empty when it can. A normal-length run writes
// on its last page the number of a next one, start + pages; a dynamic-length one draws its closing
// line under the row below its last, STARTROW + rows, and starts every placement after the first on a
// page of its own with a manual break, of which a sheet holds 1023.
std::string CounterLimitRefusal(const RunExtent& extent, const templates::TemplateDefinition& definition,
                                int startNumber);

}  // namespace sw::generate
