#pragma once
// GenerateWorkbook: the command "Generera Excel-dokument". Checks the inputs, asks for the target
// file, validates the template's INI file, starts Excel, opens and checks the template, writes the
// common texts, cuts the report into pages (fill_pages.h) and saves. Excel is left running with the
// result; the files written are handed back so a front end can show or open them.
//
// The window's controls come in as one plain struct, so the window and the command line run the very
// same code; the two controls the routine writes back (the start number and the target file name) are
// written back into it.
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/dialogs.h"
#include "base/process_launcher.h"
#include "excel/automation.h"
#include "generate/generation_state.h"
#include "generate/single_sheet_warning.h"
#include "report/report_table.h"
#include "settings/settings.h"
#include "templates/template_definition.h"

namespace sw::generate {

enum class MousePointer { kDefault = 0, kHourglass = 11 };

struct GenerationInputs {
  const report::ReportTable& table;     // the preview grid (fgPreView)
  std::string sheetNumberText;          // cboSheetNo; a blank text is replaced by "1" here
  std::string templateFolder;           // the template folder list's path (FileXls.Path)
  std::string templateFile;             // cboRdsFile: the template workbook's file name
  std::string dumpPickerText;           // cboVoltDump, remembered as "LastVoltDmp"
  std::string templateDirPickerText;    // cboRdsDir, remembered as "LastRdsDir"
  std::vector<std::string> fieldTexts;  // txtField(0 …): one per [Common] entry
  bool singleSheet = false;             // the single-sheet toggle (command 707) is checked
  std::string targetPath;               // txtExcelFilename; the chosen target is written back
};

using ApplicationFactory = std::function<std::unique_ptr<excel::Application>()>;

// What a run is busy with, for a window to say: the pages are made, then the workbook is saved.
enum class GenerationPhase { kMakingPages, kSaving };

struct GenerationServices {
  settings::Settings& settings;
  base::Dialogs& dialogs;
  SingleSheetWarning& warning;
  base::ProcessLauncher& launcher;  // opens a faulty INI file for editing
  ApplicationFactory createExcel;   // CreateObject("Excel.Application"); empty: the package engine
  std::string programFolder;        // the target dialog's folder until "ResultPath" is stored
  std::function<void(MousePointer)> setMousePointer;  // optional
  // Told as each page is begun, with the number of pages begun so far, so a window can move its
  // progress bar. Optional.
  std::function<void(int)> pageStarted;
  // The window routines' top-level-window lookup, called with the program's title when a page file
  // is in use; its answer is not used. Optional.
  std::function<void(std::string_view)> findTopLevelWindow;
  // Whether a run may save into the template itself (after keeping a copy of it), as the window's
  // single-sheet mode does with a dynamic-length template. The command line has no switch the
  // template could turn off, so there such a run is refused instead.
  bool mayWriteIntoTemplate = true;
  // Told as the run moves on to the next of its phases. Optional.
  std::function<void(GenerationPhase)> phaseChanged;
  // Asked between pages and every few hundred rows: true ends the run there. Nothing more is saved,
  // the working file goes and the earlier result stays as it was; page files already finished stay.
  // Optional.
  std::function<bool()> cancelRequested;
};

struct GenerationOutcome {
  // The run got to its end with every file it was to write; false when it stopped on a message or a
  // choice, or told of a page or file it lost (every error it tells is such a loss or a stop).
  bool completed = false;
  // The user stopped the run (GenerationServices::cancelRequested); they have been told so.
  bool cancelled = false;
  // Every workbook file written, in the order first written, as the program names them.
  std::vector<std::string> savedFiles;
  // Where the template's previous content was kept before the run wrote into it; empty when it did not.
  std::string templateBackup;
};

// The target dialog's filter for a template extension ("xlsx" → "(Kalkylblad *.xlsx)" for *.xlsx).
base::FileFilter TargetFilter(std::string_view extension);
// The template's extension: everything after its last ".", lower-cased.
std::string TemplateExtension(std::string_view templateFile);

// `definition` is the current template's (paired with its INI file when the template was chosen); its
// [Tabs] and [Sheet] parts are re-read here and its common texts refreshed from inputs.fieldTexts.
GenerationOutcome GenerateWorkbook(GenerationInputs& inputs, templates::TemplateDefinition& definition,
                                   GenerationState& state, const GenerationServices& services);

}  // namespace sw::generate
