#pragma once
// The state of a generation run. One instance lives as long as the main window: the Excel objects of
// the last run stay in it after the run, and two flags are meant to outlive a run (see below).
#include <cstdint>
#include <memory>
#include <string>

#include "excel/automation.h"

namespace sw::generate {

struct GenerationState {
  std::unique_ptr<excel::Application> excelApp;  // the application the last run started
  excel::Workbook workbook;                      // first the template opened read-only, then the working copy
  excel::Sheet currentSheet;                     // where data rows are written
  std::int16_t templateSheetIndex = 0;           // 1-based index of the [Tabs] Template= sheet; 0 = not found
  std::int16_t commonSheetIndex = 0;             // 1-based index of the [Tabs] Common= sheet; 0 = not found
  std::int16_t sheetNumber = 0;                  // number of the last page started
  std::int16_t pageNoLen = 0;                    // minimum width of page-number texts
  std::int16_t rowsOnPage = 0;                   // data rows on the current page (all rows, in dynamic runs)
  bool dynamicLength = false;                    // [Sheet] INFINITE holds a number
  std::string baseFileName;                      // single-sheet runs: the target path less its extension
  // Set by the first single-sheet page and never cleared: every later single-sheet run therefore
  // saves the freshly opened template in place before its first page file. Users have lived with
  // that for years; it stays.
  bool singleSheetSavePending = false;
  // The last run gave up on a faulty INI file and opened it for editing; cleared by a passing check.
  bool iniEditRequested = false;
  bool warningAccepted = false;  // the single-sheet warning was answered with OK
};

}  // namespace sw::generate
