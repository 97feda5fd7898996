#pragma once
// frmWarning, "Varning!": shown before a run that writes one workbook per page. OK lets the run go on;
// Avbryt, Escape or closing the window stop it. "Visa inte denna dialog nästa gång" switches the warning
// off for later runs however the dialog closes, and the placement is kept on every close.
#include <QDialog>

#include "session/front_end.h"

class QCheckBox;

namespace sw::gui {

inline constexpr const char* kWarningWindowName = "frmWarning";

class WarningDialog final : public QDialog {
  Q_OBJECT
 public:
  // Restores the placement; the box starts unchecked and the answer false.
  explicit WarningDialog(settings::Settings& settings, QWidget* parent = nullptr);

  // The answer as the dialog closed (accepted only by OK).
  generate::WarningAnswer Answer() const;

  void done(int result) override;

 private:
  settings::Settings& settings_;
  QCheckBox* chkShowNoMore_ = nullptr;
  bool accepted_ = false;
};

// The warning as generation asks it from the window: the dialog, modal over `parent`.
class DialogSingleSheetWarning final : public generate::SingleSheetWarning {
 public:
  DialogSingleSheetWarning(settings::Settings& settings, QWidget* parent)
      : settings_(settings), parent_(parent) {}
  generate::WarningAnswer Show() override;

 private:
  settings::Settings& settings_;
  QWidget* parent_;
};

}  // namespace sw::gui
