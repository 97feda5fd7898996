#include "session/report_import.h"

namespace sw::session {

excel::OpenTextOptions ReportOpenTextOptions(std::string enginePath) {
  excel::OpenTextOptions options;
  options.fileName = std::move(enginePath);
  options.origin = 2;  // xlWindows
  options.startRow = 1;
  options.dataType = excel::XlTextParsingType::xlDelimited;
  options.textQualifier = excel::XlTextQualifier::xlTextQualifierNone;
  options.consecutiveDelimiter = false;
  options.tab = true;
  options.semicolon = false;
  options.comma = false;
  options.space = false;
  options.other = false;
  for (int column = 1; column <= kTextColumns; ++column) {
    options.fieldInfo.emplace_back(column, excel::XlColumnDataType::xlTextFormat);
  }
  return options;
}

excel::Workbook ImportReportDump(excel::Application& excel, std::string enginePath,
                                 std::function<void(int, int)> rowsWritten) {
  excel::OpenTextOptions options = ReportOpenTextOptions(std::move(enginePath));
  options.rowsWritten = std::move(rowsWritten);
  excel.Workbooks().OpenText(options);
  // OpenText hands back nothing in Excel itself; the workbook it opened is the active one.
  excel::Workbook book = excel.ActiveWorkbook();
  excel::Sheet sheet = book.Sheets().Item(1);
  sheet.Cells().Select();
  sheet.Cells().EntireColumn().AutoFit();
  sheet.Range("A1").Select();
  return book;
}

}  // namespace sw::session
