#pragma once
// The report the CAD system wrote last, from [CURREPORT] of VOLTARIS.INI in the Windows folder.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/environment.h"
#include "settings/start_log.h"

namespace sw::templates {

// Receives a start-log line; the caller decides whether logging is on (the start log itself lives in
// the application layer).

struct CurrentReport {
  std::string reportId;  // CurrentReportId: REPORT_ID, the base name of the report's template workbook
  std::string first;     // REPORT_FIRST: the report's first sheet number, as text
  // The sheet-number box's items: `first` padded with leading "0" to every length up to 6
  // ("7", "07" … "000007"); the first item is the one selected.
  std::vector<std::string> sheetNumberItems;
};

// The CAD system's INI file: the "windir" variable's value followed by "\VOLTARIS.INI".
std::string CadIniPath(const base::Environment& environment);

// The padded sheet numbers for `first` (none when it already has 7 or more characters).
std::vector<std::string> SheetNumberItems(std::string_view first);

// Reads [CURREPORT] (keys compared upper-cased, the last of equal keys wins, values as they stand) and
// writes "VOLTARIS.INI successfully processed." or, when the section is missing or empty,
// "VOLTARIS.INI not found" to the start log. A missing file leaves the identifier empty.
CurrentReport ReadCurrentReport(const base::Environment& environment,
                                const settings::StartLogSink& startLog = {});

}  // namespace sw::templates
