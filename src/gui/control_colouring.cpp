#include "gui/control_colouring.h"

#include <QColor>
#include <QPalette>
#include <QWidget>

#include "session/window_rules.h"

namespace sw::gui {
namespace {

void SetBackground(QWidget& widget, const QColor& colour) {
  QPalette palette = widget.palette();
  palette.setColor(QPalette::Window, colour);
  palette.setColor(widget.backgroundRole(), colour);
  widget.setPalette(palette);
  widget.setAutoFillBackground(true);
}

}  // namespace

QColor ColourOfPacked(std::int32_t packed) {
  const auto value = static_cast<std::uint32_t>(packed);
  return QColor(static_cast<int>(value & 0xFFu), static_cast<int>((value >> 8) & 0xFFu),
                static_cast<int>((value >> 16) & 0xFFu));
}

bool ColourByPrefix(QWidget& window, std::int32_t themeColour, std::int32_t offset) {
  const auto packed = session::ShiftedThemeColour(themeColour, offset);
  if (!packed) return false;
  const QColor colour = ColourOfPacked(*packed);
  SetBackground(window, colour);
  for (QWidget* control : window.findChildren<QWidget*>()) {
    const QString name = control->objectName();
    if (name.isEmpty() || name.startsWith(QStringLiteral("qt_"))) continue;
    if (!session::TakesThemeColour(name.toStdString())) continue;
    SetBackground(*control, colour);
  }
  return true;
}

}  // namespace sw::gui
