#include "gui/theme_look.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace sw::gui {
namespace {

// The selection colour that belongs with each look.
QColor HighlightOf(int themeNumber) {
  switch (themeNumber) {
    case 0:
      return QColor(0x0A, 0x24, 0x6A);  // classic navy
    case 1:
      return QColor(0x31, 0x6A, 0xC5);
    case 2:
      return QColor(0x31, 0x6A, 0xC5);
    case 3:
      return QColor(0x31, 0x6A, 0xC5);
    case 4:
      return QColor(0x33, 0x99, 0xFF);
    default:
      return QColor(0xFF, 0xBD, 0x69);  // the later look's amber
  }
}

}  // namespace

QColor FromPackedColour(std::int32_t packed) {
  const auto value = static_cast<std::uint32_t>(packed);
  return QColor(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                static_cast<int>((value >> 16) & 0xFF));
}

void ApplyThemeLook(const session::ThemeEntry& theme) {
  const QString styleName =
      theme.style == session::ThemeStyle::kClassic ? QStringLiteral("Windows") : QStringLiteral("Fusion");
  if (QApplication::style()->name().compare(styleName, Qt::CaseInsensitive) != 0) {
    if (QStyle* style = QStyleFactory::create(styleName)) QApplication::setStyle(style);
  }
  const QColor face = FromPackedColour(theme.colour);
  QPalette palette = QApplication::style()->standardPalette();
  palette.setColor(QPalette::Window, face);
  palette.setColor(QPalette::Button, theme.style == session::ThemeStyle::kClassic ? face : face.lighter(104));
  palette.setColor(QPalette::AlternateBase, face.lighter(110));
  palette.setColor(QPalette::Highlight, HighlightOf(theme.number));
  const bool lightHighlight = HighlightOf(theme.number).lightness() > 150;
  palette.setColor(QPalette::HighlightedText, lightHighlight ? Qt::black : Qt::white);
  palette.setColor(QPalette::Disabled, QPalette::Window, face);
  palette.setColor(QPalette::Disabled, QPalette::Button, face);
  QApplication::setPalette(palette);
}

}  // namespace sw::gui
