#include "gui/field_box.h"

#include <QKeyEvent>
#include <QTimer>

#include "session/window_rules.h"

namespace sw::gui {

FieldBox::FieldBox(int index, QWidget* parent) : QLineEdit(parent), index_(index) {
  setObjectName(QStringLiteral("txtField%1").arg(index));
}

void FieldBox::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  // After the mouse press that may have brought the focus has placed the cursor.
  QTimer::singleShot(0, this, [this] {
    if (hasFocus()) selectAll();
  });
}

void FieldBox::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  emit focusLost(index_);
}

void FieldBox::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    emit enterPressed(index_);
    event->accept();
    return;
  }
  QLineEdit::keyPressEvent(event);
}

bool SheetNumberKeyFilter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const QString typed = key->text();
    int code = typed.isEmpty() ? 0 : typed.at(0).unicode();
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) code = 13;
    if (key->key() == Qt::Key_Backspace) code = 8;
    // Ctrl with a key is a shortcut, not typing (Ctrl+Alt is AltGr, which types).
    const bool shortcut = (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == Qt::ControlModifier;
    if (!shortcut && code != 0 && !session::SheetNumberKeyPasses(code)) return true;
  }
  return QObject::eventFilter(watched, event);
}

QValidator::State SheetNumberValidator::validate(QString& input, int&) const {
  const QByteArray text = input.toUtf8();
  return session::SheetNumberTextPasses(
             std::string_view(text.constData(), static_cast<std::size_t>(text.size())))
             ? Acceptable
             : Invalid;
}

}  // namespace sw::gui
