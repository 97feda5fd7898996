#include "scripted_dialogs.h"

namespace sw::testing {

base::MessageAnswer ScriptedDialogs::ShowMessage(const base::Message& message) {
  messages.push_back(message);
  if (!answers.empty()) {
    const auto answer = answers.front();
    answers.pop_front();
    return answer;
  }
  using base::MessageButtons;
  switch (message.buttons) {
    case MessageButtons::kYesNo:
    case MessageButtons::kYesNoCancel:
      return base::MessageAnswer::kYes;
    case MessageButtons::kAbortRetryIgnore:
      return base::MessageAnswer::kAbort;
    case MessageButtons::kRetryCancel:
      return base::MessageAnswer::kRetry;
    default:
      return base::MessageAnswer::kOk;
  }
}

std::optional<std::string> ScriptedDialogs::ShowFileDialog(const base::FileDialogRequest& request) {
  fileRequests.push_back(request);
  if (fileAnswers.empty()) return std::nullopt;
  auto answer = fileAnswers.front();
  fileAnswers.pop_front();
  return answer;
}

}  // namespace sw::testing
