#pragma once
// "Generera Excel-dokument" from the main window: the generation routine's inputs are read from what
// the window shows, and the two controls it writes back (the start number and the target file name)
// are written back into the window.
#include "app/workspace/workspace.h"
#include "generate/generate_workbook.h"

namespace sw::workspace {

// The inputs as the window's controls hold them: the grid, cboSheetNo, the template list's folder,
// cboRdsFile, cboVoltDump, cboRdsDir, the 30 field boxes, command 707's checked state and
// txtExcelFilename.
gen::GenerationInputs GenerationInputsFrom(const Workspace& window);

// GenerateWorkbook over the window's state, then cboSheetNo and txtExcelFilename take what it wrote.
gen::GenerationOutcome GenerateFromWorkspace(Workspace& window, gen::GenerationState& state,
                                             const gen::GenerationServices& services);

}  // namespace sw::workspace
