#pragma once
// Everything the user is told or asked goes through this one seam: the GUI shows real dialogs, the
// command line prints "<title>: <text>" and answers from --yes, tests script the answers.
#include <optional>
#include <string>

namespace sw::base {

// The program's title: the title of a message box shown without one of its own.
inline constexpr const char* kApplicationTitle = "Sheetwright";

enum class MessageIcon { kNone, kCritical, kQuestion, kExclamation, kInformation };
enum class MessageButtons { kOk, kOkCancel, kAbortRetryIgnore, kYesNoCancel, kYesNo, kRetryCancel };
enum class MessageAnswer { kOk, kCancel, kAbort, kRetry, kIgnore, kYes, kNo };

struct Message {
  std::string text;   // may hold CR (or CR LF) line breaks as the program builds them
  std::string title;  // empty: kApplicationTitle
  MessageIcon icon = MessageIcon::kNone;
  MessageButtons buttons = MessageButtons::kOk;
};

struct FileDialogRequest {
  bool save = false;  // save dialog (target file) or open dialog
  std::string title;
  std::string filter;  // "(Textfil *.txt)|*.txt" as the program writes it
  std::string initialFolder;
  std::string fileName;
  unsigned long flags = 0;  // the Windows OFN_* flags the program passes
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  virtual MessageAnswer ShowMessage(const Message& message) = 0;
  // The chosen path, or nothing when the user cancelled.
  virtual std::optional<std::string> ShowFileDialog(const FileDialogRequest& request) = 0;
};

// The title a message box shows.
inline std::string EffectiveTitle(const Message& message) {
  return message.title.empty() ? std::string(kApplicationTitle) : message.title;
}

}  // namespace sw::base
