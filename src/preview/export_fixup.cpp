#include "preview/export_fixup.h"

#include "base/upper_case.h"
#include "templates/current_report.h"
#include "templates/profile_file.h"

namespace sw::preview {

void InsertLeadingColumn(report::ReportTable& table) {
  const int cols = table.Cols();
  table.SetCols(cols + 1);
  table.MoveColumn(cols, 0);
  for (int row = 1; row < table.Rows(); ++row) {
    table.SetBackColour(row, 0, table.BackColour(row, 1));
    if (table.BackColour(row, 0) == report::kTitleGreen) {
      table.SetText(row, 0, std::string(table.Text(row, 1)));
      table.SetText(row, 1, "");
    }
  }
}

bool ExportRepairOffered(bool force, std::string_view currentReportId, const base::Environment& environment) {
  const bool sectionPresent =
      !templates::ReadIniSection("CNCHSCR", templates::CadIniPath(environment)).lines.empty();
  return (base::UpperCase(currentReportId) == "FBLTAY" || force) && (sectionPresent || force);
}

base::Notice ExportRepairQuestion() {
  return {"Infoga kolumn i yttre förbindningstabell?", "Justera fel i exportfil",
          base::MessageIcon::kQuestion};
}

}  // namespace sw::preview
