#pragma once
// Picking a report dump by hand (the file dialog behind cboVoltDump).
#include <optional>
#include <string>
#include <string_view>

#include "base/dialogs.h"
#include "settings/settings.h"

namespace sw::session {

// Shows the open dialog ("Välj textfil", "(Textfil *.txt)" for *.txt, starting in the setting "DumpPath",
// default `programFolder`). A chosen file's folder (up to and including its last "\") is saved as
// "DumpPath" and its full path returned; the caller puts it in the dump picker and loads it.
// Cancelling returns nothing and changes nothing.
std::optional<std::string> ChooseReportDump(base::Dialogs& dialogs, settings::Settings& settings,
                                            std::string_view programFolder);

}  // namespace sw::session
