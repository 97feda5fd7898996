#include "gui/theme_look.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

#include "session/theme_palette.h"

namespace sw::gui {

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
  const session::ThemePalette colours = session::PaletteOf(theme);
  const QColor face = FromPackedColour(colours.face);
  const QColor button = FromPackedColour(colours.button);
  QPalette palette = QApplication::style()->standardPalette();
  palette.setColor(QPalette::Window, face);
  palette.setColor(QPalette::Button, button);
  palette.setColor(QPalette::AlternateBase, face.lighter(110));
  palette.setColor(QPalette::Highlight, FromPackedColour(colours.highlight));
  palette.setColor(QPalette::HighlightedText, FromPackedColour(colours.highlightText));
  palette.setColor(QPalette::Disabled, QPalette::Window, face);
  palette.setColor(QPalette::Disabled, QPalette::Button, button);
  QApplication::setPalette(palette);
}

}  // namespace sw::gui
