#pragma once
// The page-break marks of the preview (ShowPageBreaks). The marks live in the report table itself:
// a mark row has column 0 light yellow with the page-break picture; generation reads them from there.
// The logic sits here, beside the template readers that give the page length.
#include <string_view>

#include "base/outcome.h"
#include "report/report_table.h"
#include "settings/settings.h"
#include "templates/template_ini.h"

namespace sw::preview {

struct PageBreakSource {
  std::string_view templateFolder;  // cboRdsDir's text
  std::string_view templateFile;    // cboRdsFile's text
  // The current template's page length as the preview reads it; none without a paired INI file.
  const templates::PageLengthReading* pageLength = nullptr;
  settings::Settings* settings = nullptr;  // "ShowPageBreaks": marks are drawn only when it is exactly "1"
};

enum class PageBreaksStatus {
  kDrawn,         // the old marks were reset (and new ones drawn when the setting allows)
  kNoTemplate,    // no template chosen, or its workbook is not there: the layout was not read
  kNoPageLength,  // no INI file, or a page length below 1
};

// ShowPageBreaks: nothing changes unless a template is chosen, its workbook (folder + "\" + file)
// exists and the page length is at least 1. Then the old marks are reset (column 0 only) and, when the
// setting allows, the marks are drawn again. The page length's notices come once for reading it and,
// when it is usable, once more: every load reads the layout a second time before the marks, so the
// user hears about a bad line again.
base::Outcome<PageBreaksStatus> ShowPageBreaks(report::ReportTable& table, const PageBreakSource& source);

// The reset pass: every row whose column 0 is light yellow gets the window background in column 0
// (the other cells of the former mark stay yellow until the next load) and blank pictures in columns
// 0 and 1.
void ResetPageBreakMarks(report::ReportTable& table);

// The marking pass: the row above every green row (placement head or manual break) is marked, and so
// is every row that ends a run of `pageLength` rows counted from the last green row or mark. Row 1 is
// never marked. A marked row is no longer green, so two green rows in a row mark the first of them.
void MarkPageBreaks(report::ReportTable& table, int pageLength);

}  // namespace sw::preview
