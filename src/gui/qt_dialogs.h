#pragma once
// The program's messages and file dialogs as Qt shows them, owned by the main window.
#include <QPointer>
#include <QWidget>

#include "base/dialogs.h"

namespace sw::gui {

// "(Textfil *.txt)|*.txt" as a Qt name filter: the description as the program wrote it, followed by
// the pattern in parentheses, one filter per description/pattern pair.
QString QtNameFilter(const std::string& programFilter);

class QtDialogs final : public base::Dialogs {
 public:
  void SetOwner(QWidget* owner) { owner_ = owner; }

  base::MessageAnswer ShowMessage(const base::Message& message) override;
  std::optional<std::string> ShowFileDialog(const base::FileDialogRequest& request) override;

 private:
  QPointer<QWidget> owner_;
};

}  // namespace sw::gui
