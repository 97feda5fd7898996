#include "gui/generation_cancel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>

namespace sw::gui {
namespace {

// Often enough that the window follows the mouse and a click is taken at once, seldom enough that
// a run of many thousand rows does not spend its time asking.
constexpr qint64 kEventsIntervalMs = 40;

bool IsEscape(const QEvent* event) {
  return static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape;
}

bool IsUserInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::InputMethod:
      return true;
    default:
      return false;
  }
}

}  // namespace

GenerationCancel::GenerationCancel(QPushButton* button, QWidget* window)
    : QObject(window), button_(button), window_(window) {
  button_->setVisible(false);
  button_->setFocusPolicy(Qt::NoFocus);
  QObject::connect(button_, &QPushButton::clicked, this, [this] { Request(); });
}

GenerationCancel::~GenerationCancel() {
  if (active_) qApp->removeEventFilter(this);
}

void GenerationCancel::SetStoppable(bool stoppable) {
  stoppable_ = stoppable;
  if (button_) button_->setEnabled(stoppable);
}

void GenerationCancel::Request() {
  if (stoppable_) requested_ = true;
}

void GenerationCancel::Begin() {
  requested_ = false;
  SetStoppable(true);
  if (!active_) qApp->installEventFilter(this);
  active_ = true;
  if (button_) button_->setVisible(true);
  sinceEvents_.start();
}

void GenerationCancel::End() {
  if (active_) qApp->removeEventFilter(this);
  active_ = false;
  SetStoppable(true);
  if (button_) button_->setVisible(false);
}

bool GenerationCancel::Requested() {
  if (active_ && !requested_ && sinceEvents_.elapsed() >= kEventsIntervalMs) {
    QCoreApplication::processEvents();
    sinceEvents_.start();
  }
  return requested_;
}

bool GenerationCancel::eventFilter(QObject* watched, QEvent* event) {
  // A message the run shows has the user's input to itself.
  if (!active_ || QApplication::activeModalWidget() || QApplication::activePopupWidget()) return false;
  const QEvent::Type type = event->type();
  if ((type == QEvent::KeyPress || type == QEvent::ShortcutOverride) && IsEscape(event)) {
    Request();
    event->accept();
    return true;
  }
  if (type == QEvent::Close && watched == window_) {
    Request();
    event->ignore();
    return true;
  }
  // Input reaches a widget through its window first; only what would reach a widget is held back.
  if (!IsUserInput(type) || !watched->isWidgetType()) return false;
  return watched != button_.data();
}

}  // namespace sw::gui
