#include "generate/single_sheet_warning.h"

#include <string>

namespace sw::generate {

WarningAnswer MessageSingleSheetWarning::Show() {
  base::Message message;
  message.text = std::string(kWarningOverwrite) + "\r\r" + kWarningExample + "\r\r" + kWarningPageCount;
  message.title = kWarningCaption;
  message.icon = base::MessageIcon::kExclamation;
  message.buttons = base::MessageButtons::kOkCancel;
  return WarningAnswer{dialogs_.ShowMessage(message) == base::MessageAnswer::kOk, false};
}

bool AskSingleSheetWarning(SingleSheetWarning& warning, settings::Settings& settings) {
  const WarningAnswer answer = warning.Show();
  if (answer.showNoMore) settings.SaveAppSetting("ShowSingleSheetWarning", "0");
  return answer.accepted;
}

}  // namespace sw::generate
