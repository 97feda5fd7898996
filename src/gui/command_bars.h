#pragma once
// The main window's menu bar and its six toolbars, built once per window. Every entry is a QAction
// named "cmd<id>" whose trigger goes to the window's dispatcher; a command on a menu and a toolbar is
// one action, so its checked and enabled states show alike in both places.
#include <array>

class QMainWindow;
class QToolBar;
class QWidget;

namespace sw::gui {

class CommandDispatcher;

struct CommandBars {
  // In order of creation: "Standard", "Utför", "Utseende", "Filer", "Av/På", "VOLTARIS-rapport".
  std::array<QToolBar*, 6> toolbars{};
  QToolBar* standard() const { return toolbars[0]; }
};

// `filesControl` is hosted on the "Filer" toolbar (the template-directory picker and its caption).
CommandBars BuildCommandBars(QMainWindow& window, const CommandDispatcher& dispatcher, QWidget* filesControl);

}  // namespace sw::gui
