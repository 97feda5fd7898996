#pragma once
// Everything the user is told or asked goes through this one seam: the GUI shows real dialogs, the
// command line prints "<title>: <text>" and answers from --yes, tests script the answers.
#include <optional>
#include <string>
#include <vector>

#include "base/notice.h"

namespace sw::base {
enum class MessageButtons { kOk, kOkCancel, kAbortRetryIgnore, kYesNoCancel, kYesNo, kRetryCancel };
enum class MessageAnswer { kOk, kCancel, kAbort, kRetry, kIgnore, kYes, kNo };

struct Message {
  std::string text;   // may hold CR (or CR LF) line breaks as the program builds them
  std::string title;  // empty: kApplicationTitle
  MessageIcon icon = MessageIcon::kNone;
  MessageButtons buttons = MessageButtons::kOk;
};

// One entry of a file dialog's type list: the text the user reads and the name patterns it stands for.
struct FileFilter {
  std::string label;     // "(Textfil *.txt)", shown as the program writes it
  std::string patterns;  // "*.txt"; several separated by ";"
  bool operator==(const FileFilter&) const = default;
};

struct FileDialogRequest {
  enum class Kind { kOpen, kSave };
  Kind kind = Kind::kOpen;
  std::string title;
  std::vector<FileFilter> filters;
  std::string initialFolder;
  std::string fileName;           // the name the dialog starts with
  bool mustExist = false;         // only a file that exists, in a folder that exists, can be chosen
  bool confirmOverwrite = false;  // choosing an existing file asks before it is taken
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  virtual MessageAnswer ShowMessage(const Message& message) = 0;
  // The chosen path, or nothing when the user cancelled.
  virtual std::optional<std::string> ShowFileDialog(const FileDialogRequest& request) = 0;
};

// A notice as a message box with an OK button.
inline Message AsMessage(const Notice& notice) { return Message{notice.text, notice.title, notice.icon}; }

// The title a message box shows.
inline std::string EffectiveTitle(const Message& message) {
  return message.title.empty() ? std::string(kApplicationTitle) : message.title;
}

}  // namespace sw::base
