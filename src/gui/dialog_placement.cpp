#include "gui/dialog_placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <cmath>

#include "settings/window_placement.h"

namespace sw::gui {
namespace {

double TwipsPerPixel(const QWidget& widget) {
  const double dpi = widget.logicalDpiX() > 0 ? widget.logicalDpiX() : 96.0;
  return 1440.0 / dpi;
}

}  // namespace

void RestoreDialogPlacement(QWidget& dialog, settings::Settings& settings, std::string_view windowName,
                            DefaultSize defaultSize) {
  const QScreen* display = dialog.screen() ? dialog.screen() : QGuiApplication::primaryScreen();
  const QRect area = display ? display->geometry() : QRect(0, 0, 1024, 768);
  const double twips = TwipsPerPixel(dialog);
  const auto placement = settings::RestoreWindowPlacement(
      settings, windowName, defaultSize.height, defaultSize.width,
      {static_cast<float>(area.width() * twips), static_cast<float>(area.height() * twips)});
  auto pixels = [twips](float value) { return static_cast<int>(std::lround(value / twips)); };
  dialog.move(pixels(placement.left), pixels(placement.top));
  dialog.resize(pixels(placement.width), pixels(placement.height));
}

void SaveDialogPlacement(const QWidget& dialog, settings::Settings& settings, std::string_view windowName) {
  const double twips = TwipsPerPixel(dialog);
  const QRect frame(dialog.pos(), dialog.size());
  settings::SaveWindowPlacement(
      settings, windowName,
      settings::WindowPlacement{.top = static_cast<float>(frame.top() * twips),
                                .left = static_cast<float>(frame.left() * twips),
                                .height = static_cast<float>(frame.height() * twips),
                                .width = static_cast<float>(frame.width() * twips),
                                .state = settings::WindowState::kNormal});
}

}  // namespace sw::gui
