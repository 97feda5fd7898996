#include "generate/start_new_page.h"

#include <string>

#include "base/dialogs.h"
#include "generate/page_text.h"
#include "generate/run_error.h"

namespace sw::gen {
namespace {

void MakePageFile(GenerationRun& run, const std::string& pageText) {
  GenerationState& state = run.state;
  const templ::TemplateDefinition& definition = run.definition;
  excel::Application& excel = run.Excel();
  if (state.singleSheetSavePending) ResumeOn1004([&] { run.Save(); });
  const std::string pagePath = state.baseFileName + "-" + pageText + run.pageFileExtension;
  ResumeOn1004([&] { DeleteFileIfPresent(pagePath); });
  ResumeOn1004([&] { run.SaveAs(pagePath); });
  ResumeOn1004([&] { state.currentSheet = state.workbook.Worksheets().Item(state.templateSheetIndex); });
  ResumeOn1004([&] { excel.Sheets().Item(state.templateSheetIndex).SetName(pageText); });
  // A skip-marker column cannot be selected; its ClearContents then clears the previous column again.
  for (const int column : definition.DataColumns) {
    ResumeOn1004([&] {
      const excel::Sheet& sheet = state.currentSheet;
      sheet.Range(sheet.Cells(definition.StartRow, column), sheet.Cells(definition.EndRow, column)).Select();
    });
    ResumeOn1004([&] { excel.Selection().ClearContents(); });
  }
  ResumeOn1004([&] { state.currentSheet.Cells(definition.StartRow, FirstDataColumn(definition)).Select(); });
  state.singleSheetSavePending = true;
}

void AppendPageSheet(GenerationRun& run, const std::string& pageText) {
  GenerationState& state = run.state;
  excel::Application& excel = run.Excel();
  int last = 0;
  ResumeOn1004([&] { last = excel.Sheets().Count(); });
  ResumeOn1004([&] { excel.Sheets().Item(state.templateSheetIndex).CopyAfter(excel.Sheets().Item(last)); });
  ResumeOn1004([&] { excel.Sheets().Item(excel.Sheets().Count()).Select(); });
  ResumeOn1004([&] { excel.Sheets().Item(excel.Sheets().Count()).SetName(pageText); });
  ResumeOn1004([&] { state.currentSheet = state.workbook.Worksheets().Item(excel.Sheets().Count()); });
}

}  // namespace

void StartNewPage(GenerationRun& run, std::string_view location) {
  GenerationState& state = run.state;
  const templ::TemplateDefinition& definition = run.definition;
  std::string pageText;
  try {
    state.sheetNumber = Int16(state.sheetNumber + 1);
    pageText = PageText(state.sheetNumber, state.pageNoLen);
    const std::string nextText = PageText(Int16(state.sheetNumber + 1), state.pageNoLen);
    excel::Application& excel = run.Excel();
    ResumeOn1004([&] { excel.Sheets().Item(state.templateSheetIndex).Select(); });

    if (run.inputs.singleSheet) {
      MakePageFile(run, pageText);
    } else {
      AppendPageSheet(run, pageText);
    }

    excel::Sheet& sheet = state.currentSheet;
    if (definition.LocationRow != 0 || definition.LocationCol != 0) {
      ResumeOn1004([&] { sheet.Cells(definition.LocationRow, definition.LocationCol).SetValue(location); });
    }
    ResumeOn1004([&] { sheet.Cells(definition.SheetNoRow, definition.SheetNoCol).SetValue(pageText); });
    if (definition.NextSheetRow == 0 && definition.NextSheetCol == 0) {
      state.rowsOnPage = 0;
      return;
    }
    ResumeOn1004([&] { sheet.Cells(definition.NextSheetRow, definition.NextSheetCol).SetValue(nextText); });
    state.rowsOnPage = 0;
  } catch (const excel::AutomationError& error) {
    if (error.number() == kPermissionDenied && run.services.findTopLevelWindow)
      run.services.findTopLevelWindow(base::kApplicationTitle);
    // ".xls " whatever the template's type: the message has always read so.
    run.TellFailure(error.number(), error.description(),
                    "Filen " + run.state.baseFileName + "-" + pageText + ".xls " +
                        "används och kan ej skrivas över.\rAnge annat filnamn.");
  }
}

}  // namespace sw::gen
