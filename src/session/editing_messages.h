#pragma once
// What the user is told when a file cannot be handed to another program.
#include <string_view>

#include "base/dialogs.h"
#include "excel/automation.h"

namespace sw::session {

// Excel failed: it could not be started (429), or it refused a call (the number and Excel's words).
void TellExcelFailure(base::Dialogs& dialogs, const base::NumberedError& error);

// No program could be started for the file at `path`.
void TellNothingStarted(base::Dialogs& dialogs, std::string_view path);

}  // namespace sw::session
