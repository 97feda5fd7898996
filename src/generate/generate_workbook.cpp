#include "generate/generate_workbook.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string>

#include "base/file_identity.h"
#include "base/out_of_memory.h"
#include "base/own_temp_files.h"
#include "base/strings.h"
#include "base/upper_case.h"
#include "base/windows_path.h"
#include "excel/application_factory.h"
#include "excel/package/package_engine.h"
#include "generate/counter_limit.h"
#include "generate/fill_pages.h"
#include "generate/generation_run.h"
#include "generate/page_text.h"
#include "generate/run_error.h"
#include "generate/start_new_page.h"
#include "generate/template_check.h"
#include "templates/template_ini.h"

namespace sw::generate {
namespace {

using base::MessageIcon;

// OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_NOREADONLYRETURN | OFN_EXPLORER
// Windows' save dialog answers with "\"; a path typed on the command line elsewhere has "/".
std::string FolderOf(std::string_view path) {
  const auto cut = path.find_last_of("\\/");
  return cut == std::string_view::npos ? std::string() : std::string(path.substr(0, cut + 1));
}

// VB's Left(text, length): a negative length is error 5, as it always was.
std::string LeftCharacters(std::string_view text, int length) {
  if (length < 0) RaiseRunError(base::kInvalidProcedureCall);
  std::size_t end = 0;
  for (int taken = 0; end < text.size() && taken < length; ++taken) {
    ++end;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
  }
  return std::string(text.substr(0, end));
}

// Tells and returns false when the run's page or row numbers would pass the 16-bit counters.
bool FitsTheCounters(const GenerationRun& run, const templates::TemplateDefinition& definition) {
  int start = 0;
  try {
    start = StartNumberValue(run.inputs.sheetNumberText);
  } catch (const base::NumberedError&) {
    return true;  // a start number that is no number fails later, where it always has
  }
  const std::string refusal =
      CounterLimitRefusal(MeasureRun(run.inputs.table, definition), definition, start);
  if (refusal.empty()) return true;
  run.Tell(refusal, "Fel", MessageIcon::kExclamation);
  run.SetMousePointer(MousePointer::kDefault);
  return false;
}

int Severity(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kCritical: return 3;
    case MessageIcon::kExclamation: return 2;
    case MessageIcon::kInformation: return 1;
    default: return 0;
  }
}

// The template's INI file as generation needs it; a failing one is opened for editing.
bool ValidateIni(GenerationRun& run, templates::TemplateDefinition& definition) {
  const auto validation = templates::ValidateTemplateIni(definition.IniPath);
  // Everything wrong with the file in one box: a box per bad line, one after the other, reads as
  // several failures instead of one file to mend.
  if (const auto& notices = validation.outcome.notices; !notices.empty()) {
    base::Notice all = notices.front();
    for (std::size_t i = 1; i < notices.size(); ++i) {
      all.text += "\r\r" + notices[i].text;
      all.icon = std::max(all.icon, notices[i].icon, [](MessageIcon a, MessageIcon b) {
        return Severity(a) < Severity(b);
      });
    }
    run.Tell(all.text, all.title, all.icon);
  }
  validation.ApplyTo(definition);
  run.state.dynamicLength = definition.Infinite;
  const auto status = validation.outcome.status;
  if (status == templates::IniValidationStatus::kMissingSheetSection) return false;
  if (status == templates::IniValidationStatus::kTooFewEntries) {
    run.state.iniEditRequested = true;
    // The message has already told the user to edit the file; a missing editor adds nothing to it.
    run.services.launcher.EditTextFile(definition.IniPath);
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  run.state.iniEditRequested = false;
  return true;
}

// Steps up to the target file: false when the run ends here.
bool CheckInputsAndAskForTarget(GenerationRun& run, GenerationInputs& inputs, templates::TemplateDefinition& definition,
                                const std::string& extension) {
  GenerationState& state = run.state;
  settings::Settings& settings = run.services.settings;
  if (base::TrimSpaces(inputs.sheetNumberText).empty()) inputs.sheetNumberText = "1";
  if (base::TrimSpaces(inputs.templateFile).empty()) {
    run.Tell("Ingen Excelmall vald.", "Fel", MessageIcon::kExclamation);
    return false;
  }
  if (inputs.table.Rows() <= 1) {
    run.Tell("Ingen data att överföra till Excel.", "Fel", MessageIcon::kExclamation);
    return false;
  }
  // Refused before the user picks a file for a result that could never be made: a template the
  // engine will not open, and a layout that writes nothing.
  const std::string templatePath = inputs.templateFolder + "\\" + inputs.templateFile;
  if (const std::string refusal = excel::WorkbookFileRefusal(EnginePath(templatePath)); !refusal.empty()) {
    // Which file it is, on a line of its own where the text itself does not say.
    const std::string shown = base::DisplayPath(templatePath);
    run.Tell(refusal.find(shown) == std::string::npos ? refusal + "\r" + shown : refusal, "Filfel",
             MessageIcon::kCritical);
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  // The INI file is checked before anything is asked: a file that cannot be used ends the run
  // whatever the answers, and the user should not first pick a target for nothing.
  if (!ValidateIni(run, definition)) return false;
  if (const std::string refusal = RowsAboveTheSheetRefusal(definition); !refusal.empty()) {
    run.Tell(refusal, "Fel", MessageIcon::kExclamation);
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  if (!FitsTheCounters(run, definition)) return false;
  settings.SaveAppSetting("LastVoltDmp", inputs.dumpPickerText);
  settings.SaveAppSetting("LastRdsDir", inputs.templateDirPickerText);
  settings.SaveAppSetting("PageNoLen", std::to_string(CharacterCount(inputs.sheetNumberText)));

  if (inputs.singleSheet && settings.GetAppSetting("ShowSingleSheetWarning", "1") == "1") {
    state.warningAccepted = AskSingleSheetWarning(run.services.warning, settings);
    if (!state.warningAccepted) return false;
  }

  base::FileDialogRequest request;
  request.kind = base::FileDialogRequest::Kind::kSave;
  request.title = "Ange filnamn för fil som skall skapas";
  request.filters = {TargetFilter(extension)};
  request.initialFolder = settings.GetAppSetting("ResultPath", run.services.programFolder);
  // Asked before anything is written: replacing a workbook the user already has is confirmed first.
  request.confirmOverwrite = true;
  const auto chosen = run.services.dialogs.ShowFileDialog(request);
  if (!chosen || chosen->empty()) {
    inputs.targetPath.clear();
    return false;
  }
  // A name without ".XLS" in it is not taken: the run goes on with the target it had before.
  if (base::UpperCase(*chosen).find(".XLS") != std::string::npos) {
    inputs.targetPath = *chosen;
    settings.SaveAppSetting("ResultPath", FolderOf(*chosen));
  }
  if (inputs.singleSheet) {
    state.baseFileName = LeftCharacters(
        inputs.targetPath, CharacterCount(inputs.targetPath) - CharacterCount(run.pageFileExtension));
  }
  return true;
}

// A workbook saved as .xlsx loses its macros without a word; a macro template's result must keep
// them, so such a target is refused before anything is touched.
bool KeepsMacros(const GenerationRun& run, const GenerationInputs& inputs, const std::string& extension) {
  if (inputs.singleSheet || extension != "xlsm" || TemplateExtension(inputs.targetPath) != "xlsx")
    return true;
  run.Tell("Mallen " + inputs.templateFile + " innehåller makron, som inte kan sparas i en .xlsx-fil.\r" +
               "Ange ett filnamn som slutar på .xlsm.",
           "Fel", MessageIcon::kExclamation);
  return false;
}

// The engine writes Open XML workbooks (and, as Excel does without a file format, an Open XML
// workbook under a .xls name); a name whose extension promises another format (.xlsb, .xltx, .ods)
// would hold something else than it says, which Excel refuses to open.
bool TargetSaysItsFormat(const GenerationRun& run, const GenerationInputs& inputs) {
  if (inputs.singleSheet || inputs.targetPath.empty()) return true;
  const std::string extension = TemplateExtension(inputs.targetPath);
  if (extension == "xlsx" || extension == "xlsm" || extension == "xls") return true;
  run.Tell("Filen " + inputs.targetPath + " kan inte skapas: ändelsen ." + extension +
               " anger ett annat format än den arbetsbok som skrivs.\r" +
               "Ange ett filnamn som slutar på .xlsx eller .xlsm.",
           "Fel", MessageIcon::kExclamation);
  return false;
}

// Opens the template read-only and finds its two sheets; tells what is missing and quits Excel.
bool FindTemplateSheets(GenerationRun& run, const std::string& templatePath) {
  GenerationState& state = run.state;
  const templates::TemplateDefinition& definition = run.definition;
  excel::Application& excel = run.Excel();
  try {
    state.workbook = excel.Workbooks().Open(EnginePath(templatePath), true);
  } catch (const base::NumberedError& error) {
    if (error.number() != kApplicationDefined) throw;
    // Skipping this one would only lead to "91 - Objektvariabeln …" on the next line: a template
    // Excel cannot open at all is told as what it is.
    run.Tell(error.description(), "Filfel", MessageIcon::kCritical);
    ResumeOn1004([&] { excel.Quit(); });
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  run.workbookPath = templatePath;

  state.templateSheetIndex = 0;
  state.commonSheetIndex = 0;
  const std::string commonName = base::UpperCase(definition.CommonSheetName);
  const std::string templateName = base::UpperCase(definition.TemplateSheetName);
  int count = 0;
  ResumeOn1004([&] { count = state.workbook.Sheets().Count(); });
  for (int i = 1; i <= count; ++i) {
    std::string name;
    ResumeOn1004([&] { name = base::UpperCase(state.workbook.Sheets().Item(i).Name()); });
    if (name == commonName) state.commonSheetIndex = Int16(i);
    if (name == templateName) state.templateSheetIndex = Int16(i);
  }
  if (state.commonSheetIndex != 0 && state.templateSheetIndex != 0) return true;

  if (state.commonSheetIndex == 0) {
    run.Tell("Fliken '" + definition.CommonSheetName + "' saknas i excelfilen", "",
             MessageIcon::kInformation);
  }
  if (state.templateSheetIndex == 0) {
    run.Tell("Fliken '" + definition.TemplateSheetName + "' saknas i excelfilen", "",
             MessageIcon::kInformation);
  }
  run.Tell("Redigera mallfilen så att den uppfyller kraven.", "", MessageIcon::kNone);
  ResumeOn1004([&] { excel.Quit(); });
  run.SetMousePointer(MousePointer::kDefault);
  return false;
}

// Refuses, before anything is touched, a run that would write over the template without a copy of it.
bool MayWriteWhereTheRunWould(GenerationRun& run, const GenerationInputs& inputs) {
  if (inputs.singleSheet && run.state.dynamicLength && !run.services.mayWriteIntoTemplate) {
    run.Tell(
        "Mallen har dynamisk sidlängd och ger inga sidor att spara var för sig: en fil per sida skulle "
        "spara över själva mallen.\rGenerera utan en fil per sida.",
        "Fel", MessageIcon::kExclamation);
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  if (!inputs.targetPath.empty() && run.IsTheTemplate(inputs.targetPath)) {
    run.Tell(
        "Filen " + inputs.targetPath + " är själva mallen och kan inte skrivas över.\rAnge annat filnamn.",
        "Fel", MessageIcon::kExclamation);
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  // A dump saved with a workbook's name would be replaced by its own result, and could not be read again.
  if (!inputs.targetPath.empty() && !inputs.dumpPickerText.empty() &&
      base::SameFile(base::ResolveWindowsPath(inputs.targetPath),
                     base::ResolveWindowsPath(inputs.dumpPickerText))) {
    run.Tell("Filen " + inputs.targetPath +
                 " är själva rapportfilen och kan inte skrivas över.\rAnge annat " + "filnamn.",
             "Fel", MessageIcon::kExclamation);
    run.SetMousePointer(MousePointer::kDefault);
    return false;
  }
  return true;
}

// The last save of the run. Unlike a rejected cell write, a save that fails loses the result, so it
// ends the run as a failure whatever its number.
bool SaveResult(GenerationRun& run) {
  const std::string pageText = run.pendingPageText;
  try {
    run.CommitResult();
    return true;
  } catch (const base::NumberedError& error) {
    run.resultLost = true;
    if (run.inputs.singleSheet && !pageText.empty()) {
      TellPageFileFailure(run, error, pageText);
    } else if (error.number() == kApplicationDefined) {
      run.Tell(error.description(), "Filfel", MessageIcon::kCritical);
      run.SetMousePointer(MousePointer::kDefault);
    } else {
      run.TellFailure(error.number(), error.description(),
                      "Filen används, kan ej skriva över.\rAnge annat filnamn", run.inputs.targetPath);
    }
    return false;
  }
}

// After a page failed: the failure has been told; the workbook is not saved, and the user is told that
// the target is as before the run. Page files already finished in single-sheet runs are complete
// workbooks of their own and stay.
void TellNothingSaved(const GenerationRun& run) {
  if (run.inputs.singleSheet || run.inputs.targetPath.empty()) return;
  run.Tell("Genereringen avbröts och arbetsboken har inte sparats: " + run.inputs.targetPath +
               " är som före körningen.",
           "Fel", MessageIcon::kExclamation);
}

// The user stopped the run: told once, as information, with what stays of it.
void TellCancelled(const GenerationRun& run) {
  run.SetMousePointer(MousePointer::kDefault);
  std::string text = "Genereringen avbröts.";
  if (!run.inputs.singleSheet) {
    if (!run.inputs.targetPath.empty()) text += " " + run.inputs.targetPath + " är som före körningen.";
  } else {
    const std::size_t kept = run.savedFiles.size();
    text += kept == 0 ? std::string(" Ingen sida hann sparas.")
            : kept == 1 ? std::string(" 1 färdig sida har sparats i en egen fil och finns kvar.")
                        : " " + std::to_string(kept) + " färdiga sidor har sparats i egna filer och finns kvar.";
  }
  run.Tell(text, "", MessageIcon::kInformation);
}

void WriteCommonTexts(GenerationRun& run) {
  GenerationState& state = run.state;
  ResumeOn1004([&] { state.currentSheet = state.workbook.Worksheets().Item(state.commonSheetIndex); });
  for (const auto& field : run.definition.CommonFields) {
    if (field.Row > 0 && field.Col > 0) {
      const std::string_view text = run.CellText(field.Value);
      ResumeOn1004([&] { state.currentSheet.Cells(field.Row, field.Col).SetValue(text); });
    }
  }
}

void Run(GenerationRun& run, GenerationInputs& inputs, templates::TemplateDefinition& definition,
         GenerationOutcome& outcome) {
  GenerationState& state = run.state;
  const std::string extension = TemplateExtension(inputs.templateFile);
  run.pageFileExtension = "." + extension;
  if (!CheckInputsAndAskForTarget(run, inputs, definition, extension)) return;
  if (!KeepsMacros(run, inputs, extension)) return;
  if (!TargetSaysItsFormat(run, inputs)) return;

  run.SetMousePointer(MousePointer::kHourglass);
  for (std::size_t i = 0; i < definition.CommonFields.size(); ++i) {
    definition.CommonFields[i].Value = i < inputs.fieldTexts.size() ? inputs.fieldTexts[i] : std::string();
  }
  run.templatePath = inputs.templateFolder + "\\" + inputs.templateFile;
  if (!MayWriteWhereTheRunWould(run, inputs)) return;
  if (!inputs.targetPath.empty()) {
    CheckTargetReplaceable(inputs.targetPath);
    base::RemoveAbandonedTempFiles(base::ResolveWindowsPath(inputs.targetPath).parent_path());
  }
  run.workingPath = inputs.targetPath + base::OwnTempSuffix();
  // From here on the run writes page after page into the target's folder.
  const base::FolderListingCache folderListings;

  // The objects of an earlier run belong to the application being replaced.
  state.currentSheet = excel::Sheet();
  state.workbook = excel::Workbook();
  state.excelApp.reset();
  state.excelApp = run.services.createExcel ? run.services.createExcel() : excel::CreateApplication();
  excel::Application& excel = *state.excelApp;
  ResumeOn1004([&] { excel.SetVisible(true); });

  state.sheetNumber = Int16(StartNumberValue(inputs.sheetNumberText) - 1);
  state.pageNoLen = Int16(CharacterCount(inputs.sheetNumberText));
  state.rowsOnPage = 0;

  const std::string& templatePath = run.templatePath;
  if (!FindTemplateSheets(run, templatePath)) return;

  ResumeOn1004([&] { state.workbook.Close(false); });
  ResumeOn1004([&] { excel.SetVisible(true); });
  // The second open passes True positionally, as the program always did: UpdateLinks, not ReadOnly.
  ResumeOn1004([&] {
    state.workbook = excel.Workbooks().Open(
        EnginePath(templatePath), excel::OpenArguments{.updateLinks = true, .readOnly = std::nullopt});
  });
  run.workbookPath = templatePath;
  if (!inputs.singleSheet) {
    try {
      run.SaveWorking(inputs.targetPath);
    } catch (const base::NumberedError& error) {
      if (error.number() != kApplicationDefined) throw;
      // Going on would end in Save writing the filled workbook over the template itself.
      run.Tell(error.description(), "Filfel", MessageIcon::kCritical);
      run.SetMousePointer(MousePointer::kDefault);
      return;
    }
  }

  WriteCommonTexts(run);
  FillPages(run);
  if (!run.stopped) run.CancelRequested();
  if (run.cancelled) {
    TellCancelled(run);
    return;
  }
  if (run.stopped) {
    TellNothingSaved(run);
    return;
  }
  run.EnterPhase(GenerationPhase::kSaving);
  if (!SaveResult(run)) return;
  ResumeOn1004([&] { excel.SetVisible(true); });
  run.SetMousePointer(MousePointer::kDefault);
  outcome.completed = !run.resultLost;
  if (outcome.completed && run.cellsCut > 0) {
    run.Tell(std::to_string(run.cellsCut) + (run.cellsCut == 1 ? " cell hade" : " celler hade") +
                 " längre text än en cell rymmer (" + std::to_string(kCellTextLimit) +
                 " tecken) och har kortats till det.",
             "", MessageIcon::kInformation);
  }
}

}  // namespace

base::FileFilter TargetFilter(std::string_view extension) {
  const std::string ext(extension);
  return {"(Kalkylblad *." + ext + ")", "*." + ext};
}

std::string TemplateExtension(std::string_view templateFile) {
  const auto dot = templateFile.rfind('.');
  const std::string_view extension =
      dot == std::string_view::npos ? templateFile : templateFile.substr(dot + 1);
  return base::AsciiLower(extension);
}

GenerationOutcome GenerateWorkbook(GenerationInputs& inputs, templates::TemplateDefinition& definition,
                                   GenerationState& state, const GenerationServices& services) {
  GenerationRun run{state, definition, inputs, services, {}, {}, {}};
  GenerationOutcome outcome;
  try {
    Run(run, inputs, definition, outcome);
  } catch (const base::NumberedError& error) {
    run.TellFailure(error.number(), error.description(),
                    "Filen används, kan ej skriva över.\rAnge annat filnamn", inputs.targetPath);
  } catch (const std::bad_alloc&) {
    // The working copy is dropped below; what the user had at the target stays as it was.
    run.Tell(base::OutOfMemoryMessage("generering av " +
                                      (inputs.targetPath.empty() ? inputs.templateFile : inputs.targetPath)),
             "Fel", MessageIcon::kCritical);
    run.SetMousePointer(MousePointer::kDefault);
  } catch (const std::exception& error) {
    // Nothing but the automation errors should get here; should anything else, it ends the run like
    // any unexpected error instead of ending the program.
    run.TellFailure(51, error.what(), "");
  }
  run.RemoveWorkingFile();
  outcome.cancelled = run.cancelled;
  outcome.savedFiles = std::move(run.savedFiles);
  outcome.templateBackup = std::move(run.templateBackup);
  return outcome;
}

}  // namespace sw::generate
