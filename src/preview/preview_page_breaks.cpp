#include "preview/preview_page_breaks.h"

#include <string>

#include "base/strings.h"
#include "base/system_colours.h"
#include "base/windows_path.h"
#include "templates/template_ini.h"

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

bool ShowPageBreaks(report::ReportTable& table, const PageBreakSource& source) {
  if (base::TrimSpaces(source.templateFile).empty()) return false;
  if (!base::WindowsFileExists(std::string(source.templateFolder) + "\\" +
                               std::string(source.templateFile))) {
    return false;
  }
  const int pageLength = source.readPageLength ? source.readPageLength() : -1;
  if (pageLength < 1) return false;
  if (source.reloadLayout) source.reloadLayout();

  ResetPageBreakMarks(table);
  if (!source.settings || source.settings->GetAppSetting("ShowPageBreaks", "1") != "1") return true;
  MarkPageBreaks(table, pageLength);
  return true;
}

int PreviewPageLayout::ReloadLayout() {
  if (definition_.IniPath.empty()) return -1;
  return templates::ReadRowsPerPage(definition_.IniPath, definition_, dialogs_);
}

bool PreviewPageLayout::ShowPageBreaks(report::ReportTable& table) {
  PageBreakSource source{folder_, file_, [this] { return ReloadLayout(); }, [this] { ReloadLayout(); },
                         &settings_};
  return preview::ShowPageBreaks(table, source);
}

}  // namespace sw::preview
