#pragma once
// How many pages a generation run will make from a report table, without making them: the preview's
// summary shows it before the user commits to a run.
namespace sw::report {
class ReportTable;
}

namespace sw::generate {

// Follows FillPages' rules: every green row starts a page, and a data row starts one when the page
// already holds `pageRows` rows (data rows met before the first green row go to the common sheet).
// With dynamic length everything goes onto one sheet: 1.
int CountPages(const report::ReportTable& table, int pageRows, bool dynamicLength);

}  // namespace sw::generate
