#pragma once
// The program's messages and file dialogs as Qt shows them, owned by the main window.
#include <QPointer>
#include <QWidget>

#include "session/front_end.h"

namespace sw::gui {

// A file dialog's filters as a Qt name filter: each label as the program wrote it, followed by its
// patterns in parentheses.
QString QtNameFilter(const std::vector<base::FileFilter>& filters);

class QtDialogs final : public base::Dialogs {
 public:
  void SetOwner(QWidget* owner) { owner_ = owner; }

  base::MessageAnswer ShowMessage(const base::Message& message) override;
  std::optional<std::string> ShowFileDialog(const base::FileDialogRequest& request) override;

 private:
  QPointer<QWidget> owner_;
};

}  // namespace sw::gui
