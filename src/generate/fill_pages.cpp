#include "generate/fill_pages.h"

#include <algorithm>
#include <string>

#include "base/upper_case.h"
#include "generate/counter_limit.h"
#include "generate/run_error.h"
#include "generate/start_new_page.h"
#include "report/colours.h"

namespace sw::generate {
namespace {

std::string RowsAddress(int first, int last) {
  return std::to_string(first) + ":" + std::to_string(last);
}

// Before a placement's first row (dynamic length): the break goes above the row the next data row will
// take, on the sheet that receives the rows. (Breaks once went to the active sheet, which is that sheet
// only when the template was saved with it in front; a template saved on another sheet got its breaks
// there and a list without any.) A break refused because the sheet already holds all it can would leave
// this placement and every later one running on from the one before in print: the run says so once
// and stops, so the earlier result stays. Any other refusal is passed over as it always was.
void BreakBeforeNextRow(GenerationRun& run) {
  excel::Sheet& sheet = run.state.currentSheet;
  const int row = Int16(run.definition.StartRow + run.state.rowsOnPage);
  try {
    sheet.HPageBreaks().Add(sheet.Rows(RowsAddress(row, row)));
  } catch (const base::NumberedError& error) {
    if (error.number() != kApplicationDefined) throw;
    int breaks = 0;
    ResumeOn1004([&] { breaks = sheet.HPageBreaks().Count(); });
    if (breaks < kManualPageBreakLimit) return;
    run.resultLost = true;
    run.stopped = true;
    run.Tell(
        "Rapporten har fler placeringar än bladet rymmer sidbrytningar för: ett kalkylblad rymmer högst " +
            std::to_string(kManualPageBreakLimit) + " manuella sidbrytningar, och placeringen på rad " +
            std::to_string(row) + " skulle inte börja på en egen sida.\rMallen " + run.inputs.templateFile +
            " har dynamisk sidlängd; dela upp rapporten eller använd en mall "
            "med fast sidlängd.",
        "Fel", base::MessageIcon::kExclamation);
  }
}

void WriteDataRow(GenerationRun& run, const std::vector<std::string_view>& cells, int tableColumns) {
  const templates::TemplateDefinition& definition = run.definition;
  GenerationState& state = run.state;
  const int fields = static_cast<int>(definition.DataColumns.size());
  for (int k = 1; k <= fields; ++k) {
    const int column = definition.DataColumns[static_cast<std::size_t>(k - 1)];
    if (k > tableColumns - 1 || column < 1) continue;
    const int row = Int16(definition.StartRow + state.rowsOnPage);
    const std::string_view text =
        k < static_cast<int>(cells.size()) ? cells[static_cast<std::size_t>(k)] : "";
    const std::string_view fitting = run.CellText(text);
    ResumeOn1004([&] { state.currentSheet.Cells(row, column).SetValue(fitting); });
  }
  state.rowsOnPage = Int16(state.rowsOnPage + 1);
}

}  // namespace

// Rows written between two questions whether the user wants the run stopped: a few milliseconds'
// work, so that a stop takes effect at once even on a page thousands of rows long.
constexpr int kRowsBetweenCancelChecks = 256;

void FillPages(GenerationRun& run) {
  const report::ReportTable& table = run.inputs.table;
  const templates::TemplateDefinition& definition = run.definition;
  GenerationState& state = run.state;
  const int pageRows = definition.EndRow - definition.StartRow + 1;
  const int tableColumns = table.Cols();
  std::string location;
  bool firstMarker = true;

  run.EnterPhase(GenerationPhase::kMakingPages);
  for (int r = 1; r < table.Rows(); ++r) {
    if (r % kRowsBetweenCancelChecks == 0) run.CancelRequested();
    if (run.stopped) return;
    if (table.BackColour(r, 0) == report::kTitleGreen) {
      // A placement head names the pages that follow; a manual break keeps the name it interrupts.
      std::string title = base::RemoveAll(table.Text(r, 0), "\t");
      if (!title.empty()) location = std::move(title);
      if (!state.dynamicLength) {
        StartNewPage(run, location);
      } else if (firstMarker) {
        firstMarker = false;
      } else {
        BreakBeforeNextRow(run);
        if (run.stopped) return;
      }
      continue;
    }
    if (state.rowsOnPage == pageRows && !state.dynamicLength) StartNewPage(run, location);
    if (run.stopped) return;
    WriteDataRow(run, table.RowTexts(r), tableColumns);
  }
  if (run.stopped) return;

  ResumeOn1004(
      [&] { state.currentSheet.Cells(definition.NextSheetRow, definition.NextSheetCol).SetValue("-"); });
  if (state.dynamicLength) FormatDynamicSheet(run);
}

void FormatDynamicSheet(GenerationRun& run) {
  const templates::TemplateDefinition& definition = run.definition;
  GenerationState& state = run.state;
  excel::Application& excel = run.Excel();
  excel::Sheet& sheet = state.currentSheet;
  const int start = definition.StartRow;
  const int rows = state.rowsOnPage;
  int widest = 0;
  for (const int column : definition.DataColumns) widest = std::max(widest, column);

  // The formats come from the second data row and the border goes under the row below the data:
  // both one row lower than one would expect, and kept that way since finished lists look so.
  ResumeOn1004([&] { sheet.Rows(RowsAddress(Int16(start + 1), Int16(start + 1))).Select(); });
  ResumeOn1004([&] { excel.Selection().Copy(); });
  ResumeOn1004([&] { sheet.Rows(RowsAddress(Int16(start + 2), Int16(start + rows))).Select(); });
  ResumeOn1004([&] { excel.Selection().PasteSpecial(excel::XlPasteType::xlPasteFormats); });
  const int bottom = Int16(start + rows);
  for (int column = 1; column <= widest; ++column) {
    ResumeOn1004([&] { sheet.Cells(bottom, column).Select(); });
    ResumeOn1004([&] {
      excel.Selection()
          .Borders(excel::XlBordersIndex::xlEdgeBottom)
          .SetWeight(excel::XlBorderWeight::xlMedium);
    });
  }
  ResumeOn1004([&] { sheet.Cells(start, FirstDataColumn(definition)).Select(); });
  ResumeOn1004([&] { excel.SetCutCopyMode(false); });
}

}  // namespace sw::generate
