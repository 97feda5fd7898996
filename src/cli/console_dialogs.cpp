#include "cli/console_dialogs.h"

#include <ostream>

namespace sw::cli {

using base::MessageAnswer;
using base::MessageButtons;

ConsoleDialogs::ConsoleDialogs(std::ostream& err, bool answerYes) : err_(err), answerYes_(answerYes) {}

void ConsoleDialogs::QueueFileAnswer(std::string path) {
  fileAnswers_.push_back(std::move(path));
}

std::string FormatMessageLine(const base::Message& message) {
  std::string line = base::EffectiveTitle(message) + ": ";
  const std::string& text = message.text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      line += '\n';
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      line += text[i];
    }
  }
  return line;
}

MessageAnswer ConsoleDialogs::ShowMessage(const base::Message& message) {
  ++messagesShown_;
  if (message.icon == base::MessageIcon::kCritical) ++errorsShown_;
  err_ << FormatMessageLine(message) << '\n';
  // Without --yes every question takes its cautious answer, so nothing changes unasked.
  switch (message.buttons) {
    case MessageButtons::kOk:
      return MessageAnswer::kOk;
    case MessageButtons::kOkCancel:
      return answerYes_ ? MessageAnswer::kOk : MessageAnswer::kCancel;
    case MessageButtons::kYesNo:
      return answerYes_ ? MessageAnswer::kYes : MessageAnswer::kNo;
    case MessageButtons::kYesNoCancel:
      return answerYes_ ? MessageAnswer::kYes : MessageAnswer::kCancel;
    case MessageButtons::kRetryCancel:
      return MessageAnswer::kCancel;
    case MessageButtons::kAbortRetryIgnore:
      return MessageAnswer::kAbort;
  }
  return MessageAnswer::kCancel;
}

std::optional<std::string> ConsoleDialogs::ShowFileDialog(const base::FileDialogRequest&) {
  if (fileAnswers_.empty()) return std::nullopt;
  std::string answer = std::move(fileAnswers_.front());
  fileAnswers_.pop_front();
  return answer;
}

}  // namespace sw::cli
