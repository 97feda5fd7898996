#pragma once
// txtField(i): a common-text box. It selects its whole text when it gets the focus and reports the
// moments its text is committed (losing the focus, Enter); what a commit does is the field logic's.
#include <QLineEdit>
#include <QValidator>

namespace sw::gui {

class FieldBox final : public QLineEdit {
  Q_OBJECT
 public:
  FieldBox(int index, QWidget* parent = nullptr);
  int Index() const { return index_; }

 signals:
  void focusLost(int index);
  void enterPressed(int index);

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int index_;
};

// cboSheetNo's key filter on the box it is installed on: the typed characters the sheet number
// accepts pass, every other one is discarded, also with Alt (an access key the window does not have
// types its letter otherwise); keys that type nothing (arrows, Delete) and Ctrl shortcuts (Ctrl+V,
// Ctrl+A) pass. Installed on the combo box itself, which hands its keys to its line edit directly.
class SheetNumberKeyFilter final : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

// cboSheetNo's validator: text that reaches the box other than by its keys (a paste, a drop, an
// input method) is taken only when all of it could have been typed there.
class SheetNumberValidator final : public QValidator {
  Q_OBJECT
 public:
  using QValidator::QValidator;
  State validate(QString& input, int& position) const override;
};

}  // namespace sw::gui
