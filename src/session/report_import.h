#pragma once
// A report dump shown as a spreadsheet: one TAB-separated field a column, exactly as the CAD system
// wrote it, with the columns wide enough to read.
#include <functional>
#include <string>

#include "excel/automation.h"

namespace sw::session {

// The columns imported as text: numbers, dates and leading zeros in them stay as written.
inline constexpr int kTextColumns = 20;

// Workbooks.OpenText's arguments for the dump at `enginePath`: Windows text (the CAD system writes the
// ANSI code page) from the first line, fields split at every TAB and nothing else (two TABs in a row
// leave an empty column), no text qualifier (quotation marks are part of the field), and columns 1 to
// kTextColumns as text; the columns after them get the General format.
excel::OpenTextOptions ReportOpenTextOptions(std::string enginePath);

// Opens the dump in `excel` with ReportOpenTextOptions, fits every column of its first sheet to its
// contents and leaves cell A1 selected. Throws base::NumberedError as Excel does. `rowsWritten`
// hears how far the built-in engine has come (excel::OpenTextOptions::rowsWritten).
excel::Workbook ImportReportDump(excel::Application& excel, std::string enginePath,
                                 std::function<void(int rowsDone, int rowCount)> rowsWritten = {});

}  // namespace sw::session
