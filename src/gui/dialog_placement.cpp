#include "gui/dialog_placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <cmath>

#include "session/window_rules.h"

namespace sw::gui {
namespace {

double TwipsPerPixel(const QWidget& widget) {
  const double dpi = widget.logicalDpiX() > 0 ? widget.logicalDpiX() : 96.0;
  return 1440.0 / dpi;
}

}  // namespace

QRect AvailableAreaFor(const QRect& frame) {
  const QScreen* best = nullptr;
  qint64 bestOverlap = 0;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect overlap = screen->geometry().intersected(frame);
    const qint64 area = overlap.isEmpty() ? 0 : qint64{overlap.width()} * overlap.height();
    if (area > bestOverlap) {
      best = screen;
      bestOverlap = area;
    }
  }
  if (!best) best = QGuiApplication::screenAt(frame.center());
  if (!best) best = QGuiApplication::primaryScreen();
  return best ? best->availableGeometry() : QRect(0, 0, 1024, 768);
}

QRect FitInto(QRect frame, const QRect& area, const QSize& minimum) {
  frame.setWidth(std::max(std::min(frame.width(), area.width()), minimum.width()));
  frame.setHeight(std::max(std::min(frame.height(), area.height()), minimum.height()));
  // The top left corner wins where the frame is larger than the area: the title bar stays reachable.
  if (frame.right() > area.right()) frame.moveRight(area.right());
  if (frame.bottom() > area.bottom()) frame.moveBottom(area.bottom());
  if (frame.left() < area.left()) frame.moveLeft(area.left());
  if (frame.top() < area.top()) frame.moveTop(area.top());
  return frame;
}

void CentreOver(QWidget& dialog, const QWidget* owner) {
  const QWidget* window = owner ? owner->window() : nullptr;
  QRect over;
  if (window) {
    over = window->isVisible() ? window->frameGeometry() : QRect(window->pos(), window->size());
  } else {
    const QScreen* screen = QGuiApplication::primaryScreen();
    over = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
  }
  QRect frame(QPoint(0, 0), dialog.size());
  frame.moveCenter(over.center());
  frame = FitInto(frame, AvailableAreaFor(over));
  dialog.move(frame.topLeft());
}

void RestoreDialogPlacement(QWidget& dialog, settings::Settings& settings, std::string_view windowName,
                            DefaultSize defaultSize) {
  const double twips = TwipsPerPixel(dialog);
  auto pixels = [twips](float value) { return static_cast<int>(std::lround(value / twips)); };
  const QScreen* display = dialog.screen() ? dialog.screen() : QGuiApplication::primaryScreen();
  const QRect screenArea = display ? display->geometry() : QRect(0, 0, 1024, 768);
  const auto placement = session::RestoreWindowPlacement(
      settings, windowName, defaultSize.height, defaultSize.width,
      {static_cast<float>(screenArea.width() * twips), static_cast<float>(screenArea.height() * twips)});
  const QSize least(pixels(defaultSize.width), pixels(defaultSize.height));
  const QRect restored(pixels(placement.left), pixels(placement.top), pixels(placement.width),
                       pixels(placement.height));
  const bool placed = !settings.GetAppSetting("Top", "", windowName).empty() ||
                      !settings.GetAppSetting("Left", "", windowName).empty();
  if (!placed) {
    // Never placed by the user: over the window it belongs to.
    dialog.resize(FitInto(restored, AvailableAreaFor(restored), least).size());
    CentreOver(dialog, dialog.parentWidget());
    return;
  }
  // Kept on the screens there are now; never below the default size.
  const QRect fitted = FitInto(restored, AvailableAreaFor(restored), least);
  dialog.move(fitted.topLeft());
  dialog.resize(fitted.size());
}

void SaveDialogPlacement(const QWidget& dialog, settings::Settings& settings, std::string_view windowName) {
  const double twips = TwipsPerPixel(dialog);
  const QRect frame(dialog.pos(), dialog.size());
  session::SaveWindowPlacement(settings, windowName,
                               session::WindowPlacement{.top = static_cast<float>(frame.top() * twips),
                                                        .left = static_cast<float>(frame.left() * twips),
                                                        .height = static_cast<float>(frame.height() * twips),
                                                        .width = static_cast<float>(frame.width() * twips),
                                                        .state = session::WindowState::kNormal});
}

}  // namespace sw::gui
