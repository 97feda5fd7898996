#pragma once
// frmOptions, "Alternativ" (command 304): the four settings of the options, on the tab "Generellt".
// The two report boxes ("Inkludera tomrader", "Visa avslutande /2") act the moment they are clicked,
// as the toggles 305 and 306 do, so Avbryt cannot take them back; it only drops the other two boxes.
// OK stores all four, keeps the dialog's placement and draws the page-break marks again.
#include <QDialog>
#include <functional>

#include "session/front_end.h"
#include "session/session.h"

class QCheckBox;
class QPushButton;

namespace sw::gui {

// Runs one session operation the way the window runs its own (grid detached while the table changes);
// empty: the operation is called as it is.
using OperationRunner = std::function<void(const std::function<void()>&)>;

inline constexpr const char* kOptionsWindowName = "frmOptions";

class OptionsDialog final : public QDialog {
  Q_OBJECT
 public:
  // Restores the placement and loads the boxes; show it with exec() (or show(), for a picture).
  OptionsDialog(session::Session& session, settings::Settings& settings, QWidget* parent = nullptr,
                OperationRunner run = {});

  // The boxes' state as OK would store it.
  session::Options Chosen() const;

 private:
  void Run(const std::function<void()>& operation);
  void AcceptChoices();

  session::Session& session_;
  settings::Settings& settings_;
  OperationRunner run_;
  QCheckBox* chkPageBreak_ = nullptr;
  QCheckBox* chkShowWarning_ = nullptr;
  QCheckBox* chkIncludeEmptyRows_ = nullptr;
  QCheckBox* chkUseSlashTwo_ = nullptr;
};

// Command 304: the dialog, modal over `parent`, until OK or Avbryt.
void RunOptionsDialog(QWidget* parent, session::Session& session, settings::Settings& settings,
                      OperationRunner run = {});

}  // namespace sw::gui
