#include "generate/start_new_page.h"

#include <string>

#include "base/dialogs.h"
#include "generate/page_text.h"
#include "generate/run_error.h"

namespace sw::generate {
namespace {

std::string PageFilePath(const GenerationRun& run, const std::string& pageText) {
  return run.state.baseFileName + "-" + pageText + run.pageFileExtension;
}

std::string PageFileInUseText(const GenerationRun& run, const std::string& pageText) {
  // ".xls " whatever the template's type: the message has always read so.
  return "Filen " + run.state.baseFileName + "-" + pageText + ".xls " +
         "används och kan ej skrivas över.\rAnge annat filnamn.";
}

// The previous page's file is written when the next page starts. One that cannot be written is told
// and lost; the new page still gets its own file.
void SavePreviousPage(GenerationRun& run) {
  const std::string pageText = run.pendingPageText;
  try {
    run.CommitResult();
  } catch (const base::NumberedError& error) {
    run.resultLost = true;
    TellPageFileFailure(run, error, pageText);
    // Only a file in use is that file's own trouble; a full disk or a folder gone read-only would
    // fail every page after it with the same message.
    if (error.number() != kPermissionDenied || !WriteRefusalCause(PageFilePath(run, pageText)).empty())
      run.stopped = true;
  }
}

bool MakePageFile(GenerationRun& run, const std::string& pageText) {
  GenerationState& state = run.state;
  const templates::TemplateDefinition& definition = run.definition;
  excel::Application& excel = run.Excel();
  if (state.singleSheetSavePending) {
    SavePreviousPage(run);
    if (run.stopped) return false;
  }
  const std::string pagePath = state.baseFileName + "-" + pageText + run.pageFileExtension;
  if (run.IsTheTemplate(pagePath)) {
    run.resultLost = true;
    run.Tell("Filen " + pagePath + " är själva mallen och kan inte skrivas över.\rAnge annat filnamn.", "Fel",
             base::MessageIcon::kExclamation);
    return false;
  }
  CheckTargetReplaceable(pagePath);
  try {
    run.SaveWorking(pagePath, pageText);
  } catch (const base::NumberedError& error) {
    if (error.number() != kApplicationDefined) throw;
    // The engine could not write the page's file at all (the disk is full, the folder cannot be
    // written): the next page would fail alike, so the run ends here with one message.
    run.resultLost = true;
    run.stopped = true;
    run.Tell(error.description(), "Filfel", base::MessageIcon::kCritical);
    return false;
  }
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
  return true;
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
  if (run.services.pageStarted) run.services.pageStarted(++run.pagesStarted);
  // Asked before the previous page file is saved: a stop leaves nothing half done behind it.
  if (run.CancelRequested()) return;
  GenerationState& state = run.state;
  const templates::TemplateDefinition& definition = run.definition;
  std::string pageText;
  try {
    state.sheetNumber = Int16(state.sheetNumber + 1);
    pageText = PageText(state.sheetNumber, state.pageNoLen);
    const std::string nextText = PageText(Int16(state.sheetNumber + 1), state.pageNoLen);
    excel::Application& excel = run.Excel();
    ResumeOn1004([&] { excel.Sheets().Item(state.templateSheetIndex).Select(); });

    if (run.inputs.singleSheet) {
      if (!MakePageFile(run, pageText)) {
        run.SetMousePointer(MousePointer::kDefault);
        return;
      }
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
  } catch (const base::NumberedError& error) {
    if (run.inputs.singleSheet) run.resultLost = true;
    // A workbook missing a page is no result, and a page number past the counter fails every page
    // after it: the run ends. A page file in use is that file's own trouble; the next pages go on.
    if (!run.inputs.singleSheet || error.number() != kPermissionDenied ||
        !WriteRefusalCause(PageFilePath(run, pageText)).empty())
      run.stopped = true;
    if (error.number() == kPermissionDenied && run.services.findTopLevelWindow)
      run.services.findTopLevelWindow(base::kApplicationTitle);
    run.TellFailure(error.number(), error.description(), PageFileInUseText(run, pageText),
                  PageFilePath(run, pageText));
  }
}

void TellPageFileFailure(GenerationRun& run, const base::NumberedError& error, const std::string& pageText) {
  if (error.number() == kApplicationDefined) {
    run.Tell(error.description(), "Filfel", base::MessageIcon::kCritical);
    run.SetMousePointer(MousePointer::kDefault);
    return;
  }
  if (error.number() == kPermissionDenied && run.services.findTopLevelWindow)
    run.services.findTopLevelWindow(base::kApplicationTitle);
  run.TellFailure(error.number(), error.description(), PageFileInUseText(run, pageText),
                  PageFilePath(run, pageText));
}

}  // namespace sw::generate
