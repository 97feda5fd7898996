#pragma once
// The page-break marks of the preview (ShowPageBreaks). The marks live in the report table itself:
// a mark row has column 0 light yellow with the page-break picture; generation reads them from there.
// The logic sits here, beside the template readers that give the page length.
#include <functional>
#include <string>
#include <string_view>

#include "base/dialogs.h"
#include "report/report_table.h"
#include "settings/settings.h"
#include "templates/template_definition.h"

namespace sw::preview {

struct PageBreakSource {
  std::string_view templateFolder;  // cboRdsDir's text
  std::string_view templateFile;    // cboRdsFile's text
  // The template-layout reader: rows per page of the current template (ReadRowsPerPage on IniPath).
  std::function<int()> readPageLength;
  // Reloads the template layout once more after a usable page length, as every load does; optional.
  std::function<void()> reloadLayout;
  settings::Settings* settings = nullptr;  // "ShowPageBreaks": marks are drawn only when it is exactly "1"
};

// ShowPageBreaks: nothing changes unless a template is chosen, its workbook (folder + "\" + file)
// exists and the page length is at least 1. Then the old marks are reset (column 0 only) and, when the
// setting allows, the marks are drawn again. Returns whether the reset ran.
bool ShowPageBreaks(report::ReportTable& table, const PageBreakSource& source);

// The reset pass: every row whose column 0 is light yellow gets the window background in column 0
// (the other cells of the former mark stay yellow until the next load) and blank pictures in columns
// 0 and 1.
void ResetPageBreakMarks(report::ReportTable& table);

// The marking pass: the row above every green row (placement head or manual break) is marked, and so
// is every row that ends a run of `pageLength` rows counted from the last green row or mark. Row 1 is
// never marked. A marked row is no longer green, so two green rows in a row mark the first of them.
void MarkPageBreaks(report::ReportTable& table, int pageLength);

// The current template's page layout as the preview uses it, ready to be wired into the end of a load
// (report::PreviewContext's reloadTemplateLayout and showPageBreaks) and into the edit commands.
class PreviewPageLayout {
 public:
  PreviewPageLayout(templates::TemplateDefinition& definition, base::Dialogs& dialogs,
                    settings::Settings& settings)
      : definition_(definition), dialogs_(dialogs), settings_(settings) {}

  // The pickers' texts: the template folder and the workbook's name.
  void SetTemplate(std::string folder, std::string file) {
    folder_ = std::move(folder);
    file_ = std::move(file);
  }

  // ReadRowsPerPage on the paired INI file; −1 without telling anything when there is none (the
  // pairing has already said so).
  int ReloadLayout();

  // ShowPageBreaks with this layout. A usable page length is followed by a second read of the layout,
  // as every load makes one; that read repeats the layout's messages about bad lines.
  bool ShowPageBreaks(report::ReportTable& table);

 private:
  templates::TemplateDefinition& definition_;
  base::Dialogs& dialogs_;
  settings::Settings& settings_;
  std::string folder_;
  std::string file_;
};

}  // namespace sw::preview
