#pragma once
// What the parts of one generation run share: the driver builds it, pagination and page creation
// work on it.
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "generate/generate_workbook.h"

namespace sw::generate {

struct GenerationRun {
  GenerationState& state;
  const templates::TemplateDefinition& definition;
  const GenerationInputs& inputs;
  const GenerationServices& services;
  std::string pageFileExtension;  // "." and the template's lower-case extension
  std::string workbookPath;       // where a Save of the working workbook writes (as the program names it)
  std::vector<std::string> savedFiles;
  std::string templatePath;  // the template workbook, as the program names it
  // The workbook is saved as the program's own file beside its target until it is complete, so a
  // failed or killed run never leaves the user with less than the old target.
  std::string workingPath;
  std::string pendingPath;      // where the working workbook goes once complete; empty: nowhere yet
  std::string pendingPageText;  // single-sheet runs: the page that pendingPath is the file of
  std::string templateBackup;   // where the template's content was kept before a save into it
  bool resultLost = false;      // a result file could not be written
  // A page failed so that the workbook cannot be complete, or so that every later page would fail
  // alike (a full disk, a page number past the counter): the run ends there and saves nothing more.
  bool stopped = false;
  bool cancelled = false;  // the user asked the run to stop; `stopped` is set with it
  int pagesStarted = 0;
  int cellsCut = 0;  // texts cut to what a cell holds

  excel::Application& Excel() const;
  // Asks whether the user wants the run stopped; once they did, the run is stopped and stays so.
  bool CancelRequested();
  void EnterPhase(GenerationPhase phase) const;
  void SetMousePointer(MousePointer pointer) const;
  void Tell(std::string text, std::string title, base::MessageIcon icon) const;
  // The error handler's message for failure `number` (Excel's or ours, with its `description`), and
  // the pointer back to normal. Error 70 tells `fileInUse`, which names the file where it can.
  // `path`: the file a "permission denied" (70) was about; its real cause, when there is one besides
  // another program having it open, follows the in-use text on a line of its own.
  void TellFailure(int number, const std::string& description, const std::string& fileInUse,
                   const std::string& path = {}) const;
  // Workbook.SaveAs and Workbook.Save on the working workbook, noting the file written.
  void SaveAs(const std::string& path);
  void Save();
  // Saves the workbook as the working file; CommitResult later puts it at `finalPath`.
  void SaveWorking(const std::string& finalPath, const std::string& pageText = {});
  // Writes the workbook where it belongs: to its pending path in one replacing step, else by a Save
  // where it is. A Save into the template keeps a copy of the
  // template first and does not happen when the copy cannot be made.
  void CommitResult();
  void RemoveWorkingFile() const;
  // Whether `path` reaches the template's file, found as the program finds files.
  bool IsTheTemplate(std::string_view path) const;
  // `text` as a cell can hold it: cut to kCellTextLimit characters, counting the cut.
  std::string_view CellText(std::string_view text);
};

// The most characters a workbook cell holds (UTF-16 units, as the workbook counts them).
inline constexpr std::size_t kCellTextLimit = 32767;

// The part of the UTF-8 `text` that fits in a cell, ending on a whole character.
std::string_view CutToCellLimit(std::string_view text);

// The file name that keeps a template's content before a run writes into it, for a run started at
// `localTime` ("Lista (kopia före körning 2026-11-23 11.40.07).xlsx").
std::string TemplateBackupName(std::string_view templateFile, const std::tm& localTime);

// The first COLUMNS entry; error 9 when the template gave none.
int FirstDataColumn(const templates::TemplateDefinition& definition);

}  // namespace sw::generate
