#pragma once
// A Dialogs double: records every message and file dialog, answers from a script.
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "base/dialogs.h"

namespace sw::testing {

class ScriptedDialogs final : public base::Dialogs {
 public:
  // Answers given in order; when the script runs out, OK/Yes-like first buttons answer (kOk or kYes).
  std::deque<base::MessageAnswer> answers;
  // File dialog answers in order; when it runs out, the dialog is cancelled.
  std::deque<std::optional<std::string>> fileAnswers;

  std::vector<base::Message> messages;
  std::vector<base::FileDialogRequest> fileRequests;

  base::MessageAnswer ShowMessage(const base::Message& message) override;
  std::optional<std::string> ShowFileDialog(const base::FileDialogRequest& request) override;
};

}  // namespace sw::testing
