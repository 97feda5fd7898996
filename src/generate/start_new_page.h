#pragma once
// StartNewPage: makes the next page and writes its placement, number and next-page number.
// Normal runs append a copy of the template sheet to the working workbook. Single-sheet runs reuse
// one workbook: the template sheet itself is renamed, emptied and saved under a file of its own per
// page (target C:\R\Lista.xls, page 07: C:\R\Lista-07.xls); the other sheets travel into every file.
#include <string>
#include <string_view>

#include "generate/generation_run.h"

namespace sw::generate {

// Handles its own failures: tells them (a 1004 is skipped), sets the mouse pointer back and returns.
// The caller goes on with the next rows only after a page file in use; any other failure sets
// run.stopped, as the workbook would be incomplete or every later page would fail alike.
void StartNewPage(GenerationRun& run, std::string_view location);

// Tells that the file of page `pageText` could not be written, as a page file in use is told.
void TellPageFileFailure(GenerationRun& run, const base::NumberedError& error, const std::string& pageText);

}  // namespace sw::generate
