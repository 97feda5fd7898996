#include "preview/preview_page_breaks.h"

#include <string>

#include "base/strings.h"
#include "base/system_colours.h"
#include "base/windows_path.h"

namespace sw::preview {
namespace {

void MarkRow(report::ReportTable& table, int row) {
  table.SetPicture(row, 0, report::CellPicture::kPageBreak);
  table.SetRowBackColour(row, 0, table.Cols() - 1, report::kPageBreakYellow);
}

}  // namespace

void ResetPageBreakMarks(report::ReportTable& table) {
  for (int row = 1; row < table.Rows(); ++row) {
    if (table.BackColour(row, 0) != report::kPageBreakYellow) continue;
    table.SetBackColour(row, 0, base::kSystemWindowBackground);
    table.SetPicture(row, 0, report::CellPicture::kBlank);
    table.SetPicture(row, 1, report::CellPicture::kBlank);
  }
}

void MarkPageBreaks(report::ReportTable& table, int pageLength) {
  int counter = 0;
  for (int row = 1; row < table.Rows(); ++row) {
    if (row > 1 && table.BackColour(row, 0) == report::kTitleGreen) {
      MarkRow(table, row - 1);
      counter = 0;
    }
    if (row > 1 && counter == pageLength) {
      MarkRow(table, row);
      counter = 0;
    }
    ++counter;
  }
}

base::Outcome<PageBreaksStatus> ShowPageBreaks(report::ReportTable& table, const PageBreakSource& source) {
  base::Outcome<PageBreaksStatus> outcome;
  if (base::TrimSpaces(source.templateFile).empty() ||
      !base::WindowsFileExists(std::string(source.templateFolder) + "\\" +
                               std::string(source.templateFile))) {
    return outcome.Fail(PageBreaksStatus::kNoTemplate);
  }
  if (!source.pageLength) return outcome.Fail(PageBreaksStatus::kNoPageLength);
  outcome.Append(source.pageLength->outcome);
  const int pageLength = source.pageLength->rowsPerPage;
  if (pageLength < 1) return outcome.Fail(PageBreaksStatus::kNoPageLength);
  outcome.Append(source.pageLength->outcome);

  ResetPageBreakMarks(table);
  if (!source.settings || source.settings->GetAppSetting("ShowPageBreaks", "1") != "1") return outcome;
  MarkPageBreaks(table, pageLength);
  return outcome;
}

}  // namespace sw::preview
