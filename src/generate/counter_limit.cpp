#include "generate/counter_limit.h"

#include <set>

#include "generate/page_count.h"
#include "report/colours.h"

namespace sw::generate {

RunExtent MeasureRun(const report::ReportTable& table, const templates::TemplateDefinition& definition) {
  RunExtent extent;
  if (!definition.Infinite) {
    extent.pages = CountPages(table, definition.EndRow - definition.StartRow + 1, false);
    return extent;
  }
  // As the run breaks: above the next data row at every head after the first, once per row.
  std::set<int> breakRows;
  bool firstHead = true;
  for (int row = 1; row < table.Rows(); ++row) {
    if (table.BackColour(row, 0) != report::kTitleGreen) {
      ++extent.dataRows;
    } else if (firstHead) {
      firstHead = false;
    } else if (definition.StartRow + extent.dataRows > 1) {
      breakRows.insert(definition.StartRow + extent.dataRows);
    }
  }
  extent.pageBreaks = static_cast<int>(breakRows.size());
  return extent;
}

std::string CounterLimitRefusal(const RunExtent& extent, const templates::TemplateDefinition& definition,
                                int startNumber) {
  if (definition.Infinite) {
    const long long room = static_cast<long long>(kLargestCount) - definition.StartRow;
    if (extent.dataRows > room) {
      return "Rapporten har " + std::to_string(extent.dataRows) +
             " rader, men en mall med dynamisk sidlängd rymmer bara " + std::to_string(room) +
             " rader från rad " + std::to_string(definition.StartRow) +
             ".\rDela upp rapporten och generera den i flera delar.";
    }
    if (extent.pageBreaks <= kManualPageBreakLimit) return {};
    return "Rapporten behöver " + std::to_string(extent.pageBreaks) +
           " manuella sidbrytningar för att varje placering ska börja på en egen sida, men ett kalkylblad "
           "rymmer högst " + std::to_string(kManualPageBreakLimit) +
           ".\rMallen har dynamisk sidlängd; dela upp rapporten eller använd en mall med fast sidlängd.";
  }
  const long long next = static_cast<long long>(startNumber) + extent.pages;
  if (next <= kLargestCount) return {};
  return "Rapporten ger " + std::to_string(extent.pages) + " sidor från sidnummer " +
         std::to_string(startNumber) + ", men sidnumren räcker bara till " +
         std::to_string(kLargestCount - 1) +
         ".\rDela upp rapporten och generera den i flera delar, eller börja på ett lägre sidnummer.";
}

}  // namespace sw::generate
