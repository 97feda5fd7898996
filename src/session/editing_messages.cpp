#include "session/editing_messages.h"

#include <string>

namespace sw::session {

void TellExcelFailure(base::Dialogs& dialogs, const base::NumberedError& error) {
  if (error.number() == excel::kCannotCreateObject) {
    dialogs.ShowMessage({.text = "Kan ej starta Microsoft Excel.\rKontrollera installationen.",
                         .title = "Active-X fel",
                         .icon = base::MessageIcon::kCritical,
                         .buttons = base::MessageButtons::kOk});
    return;
  }
  dialogs.ShowMessage({.text = std::to_string(error.number()) + " - " + error.description(),
                       .title = "Fel",
                       .icon = base::MessageIcon::kCritical,
                       .buttons = base::MessageButtons::kOk});
}

void TellNothingStarted(base::Dialogs& dialogs, std::string_view path) {
  dialogs.ShowMessage({.text = "Det gick inte att starta något program som kan öppna\r" + std::string(path),
                       .title = "Fel",
                       .icon = base::MessageIcon::kExclamation,
                       .buttons = base::MessageButtons::kOk});
}

}  // namespace sw::session
