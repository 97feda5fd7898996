#pragma once
// txtField(i): a common-text box. It selects its whole text when it gets the focus and reports the
// moments its text is committed (losing the focus, Enter); what a commit does is the field logic's.
#include <QLineEdit>

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
// accepts pass, every other one is discarded; keys that type nothing (arrows, Delete) pass.
class SheetNumberKeyFilter final : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace sw::gui
