#pragma once
// Dialogs for the command line: messages go to stderr as "<title>: <text>", questions are answered
// from --yes, and file dialogs take their answers from the command's arguments.
#include <deque>
#include <iosfwd>
#include <optional>
#include <string>

#include "base/dialogs.h"

namespace sw::cli {

class ConsoleDialogs final : public base::Dialogs {
 public:
  ConsoleDialogs(std::ostream& err, bool answerYes);

  // The next file dialog answers with `path`; a dialog with no queued answer is cancelled.
  void QueueFileAnswer(std::string path);
  int MessagesShown() const { return messagesShown_; }
  // Messages with the critical icon: the program's errors, as opposed to its notes and questions.
  int ErrorsShown() const { return errorsShown_; }

  base::MessageAnswer ShowMessage(const base::Message& message) override;
  std::optional<std::string> ShowFileDialog(const base::FileDialogRequest& request) override;

 private:
  std::ostream& err_;
  bool answerYes_;
  int messagesShown_ = 0;
  int errorsShown_ = 0;
  std::deque<std::string> fileAnswers_;
};

// A message as the command line prints it: CR LF, CR and LF in the text all become line breaks.
std::string FormatMessageLine(const base::Message& message);

}  // namespace sw::cli
