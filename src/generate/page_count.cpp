#include "generate/page_count.h"

#include "report/colours.h"
#include "report/report_table.h"

namespace sw::generate {

int CountPages(const report::ReportTable& table, int pageRows, bool dynamicLength) {
  if (dynamicLength) return 1;
  int pages = 0;
  int rowsOnPage = 0;
  for (int row = 1; row < table.Rows(); ++row) {
    if (table.BackColour(row, 0) == report::kTitleGreen) {
      ++pages;
      rowsOnPage = 0;
      continue;
    }
    if (rowsOnPage == pageRows) {
      ++pages;
      rowsOnPage = 0;
    }
    ++rowsOnPage;
  }
  return pages;
}

}  // namespace sw::generate
