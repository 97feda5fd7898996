// sheetwright-screenshot FOLDER: starts the main window as `sheetwright` does (same settings, same
// environment, its placement included), waits until it is painted and saves the README's pictures in
// FOLDER: the window (main_window.png), the window with the menu "Verktyg" open
// (main_window_tools_menu.png), "Gå till sida" asking for a page (main_window_go_to_page.png), the
// grid scrolled sideways with the placement names kept in view (main_window_scrolled.png), the window
// where nothing of the CAD system is found (main_window_empty.png), two themes side by side (themes.png) and the options dialog over the
// window (options_dialog.png). Run offscreen by
// scripts/screenshot.sh, against settings of its own: choosing the themes stores "Theme" there.
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QInputDialog>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QTimer>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <vector>

#include "gui/command_table.h"
#include "gui/main_window.h"
#include "gui/options_dialog_picture.h"
#include "gui/qt_dialogs.h"
#include "cadenv/portable_registry.h"
#include "session/front_end.h"

namespace {

using sw::gui::MainWindow;

// Lets the window settle: layouts, repaints and popups happen on the event loop.
void Settle() {
  for (int i = 0; i < 5; ++i) QApplication::processEvents();
}

// The window with its open menu drawn where it stands on the screen (a popup is a window of its own,
// so grabbing the main window alone leaves it out).
QImage WindowWithMenu(MainWindow& window, const QString& title) {
  QMenu* menu = nullptr;
  for (QAction* action : window.menuBar()->actions()) {
    if (action->text() == title) {
      menu = action->menu();
      window.menuBar()->setActiveAction(action);
    }
  }
  Settle();
  QImage shot = window.grab().toImage();
  if (menu && menu->isVisible()) {
    const QPoint at = window.mapFromGlobal(menu->mapToGlobal(QPoint(0, 0)));
    QPainter painter(&shot);
    painter.drawPixmap(at, menu->grab());
  }
  if (menu) menu->close();
  Settle();
  return shot;
}

// "Gå till sida" (Ctrl+G) asking for page 3, drawn over the window; the page is then gone to.
QImage WindowWithGoToPage(MainWindow& window) {
  QImage shot;
  QTimer::singleShot(0, &window, [&] {
    auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
    if (!dialog) return;
    dialog->setTextValue(QStringLiteral("3"));
    Settle();
    shot = window.grab().toImage();
    const QPoint at = window.mapFromGlobal(dialog->mapToGlobal(QPoint(0, 0)));
    QPainter painter(&shot);
    painter.drawPixmap(at, dialog->grab());
    painter.end();
    dialog->accept();
  });
  window.Dispatcher().Dispatch(sw::gui::kCommandGoToPage);
  Settle();
  return shot;
}

// The window made narrow and its grid scrolled sideways: the placement names stay at the left edge.
QImage WindowScrolledSideways(MainWindow& window) {
  const QSize size = window.size();
  window.resize(560, size.height());
  Settle();
  auto* grid = window.findChild<QTableView*>(QStringLiteral("fgPreView"));
  if (grid) grid->horizontalScrollBar()->setValue(grid->horizontalScrollBar()->maximum());
  Settle();
  QImage shot = window.grab().toImage();
  if (grid) grid->horizontalScrollBar()->setValue(0);
  window.resize(size);
  Settle();
  return shot;
}

// A computer without the CAD system: nothing in the environment, settings of its own.
class NoEnvironment final : public sw::base::Environment {
 public:
  std::optional<std::string> Get(std::string_view) const override { return std::nullopt; }
};

class NoDialogs final : public sw::base::Dialogs {
 public:
  sw::base::MessageAnswer ShowMessage(const sw::base::Message&) override { return sw::base::MessageAnswer::kOk; }
  std::optional<std::string> ShowFileDialog(const sw::base::FileDialogRequest&) override { return std::nullopt; }
};

// The window started where no template folder and no report dump are found: the grid's place says
// what was looked for and offers "Välj textfil...".
QImage EmptyWindow(MainWindow& shown) {
  const QTemporaryDir folder;
  sw::cadenv::PortableRegistry registry(std::filesystem::path(folder.filePath(QStringLiteral("registry.reg")).toStdString()));
  sw::settings::RegistrySettings settings(registry);
  const NoEnvironment environment;
  NoDialogs dialogs;
  const auto launcher = sw::base::CreateSystemProcessLauncher();
  MainWindow window({.session = {.registry = registry,
                                 .settings = settings,
                                 .environment = environment,
                                 .dialogs = dialogs,
                                 .launcher = *launcher}});
  window.show();
  window.resize(shown.size());
  Settle();
  QImage shot = window.grab().toImage();
  window.hide();
  return shot;
}

QImage WindowInTheme(MainWindow& window, int themeNumber) {
  window.ApplyTheme(themeNumber);
  Settle();
  return window.grab().toImage();
}

QImage SideBySide(const QImage& left, const QImage& right) {
  constexpr int kGap = 16;
  QImage both(left.width() + kGap + right.width(), std::max(left.height(), right.height()),
              QImage::Format_RGB32);
  both.fill(Qt::white);
  QPainter painter(&both);
  painter.drawImage(0, 0, left);
  painter.drawImage(left.width() + kGap, 0, right);
  return both;
}

struct Shot {
  const char* file;
  std::function<QImage(MainWindow&)> take;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: sheetwright-screenshot FOLDER\n");
    return 2;
  }
  const sw::settings::StartLog startLog(sw::base::ProcessEnvironment());
  auto registry = sw::cadenv::OpenUserRegistry();
  sw::settings::RegistrySettings settings(*registry);
  sw::gui::QtDialogs dialogs;
  const auto launcher = sw::base::CreateSystemProcessLauncher();
  MainWindow window({.session = {.registry = *registry,
                                 .settings = settings,
                                 .environment = sw::base::ProcessEnvironment(),
                                 .dialogs = dialogs,
                                 .launcher = *launcher,
                                 .startLog = &startLog}});
  window.show();
  // The offscreen screen is 800 pixels wide, which cuts the restored width; the README shows the
  // window as wide as the settings ask, where every toolbar button has room.
  window.resize(1000, window.height());

  // In this order: the plain window first, in the theme the settings start it with. A dialog's picture
  // is one more entry here.
  const std::vector<Shot> shots{
      {"main_window.png", [](MainWindow& w) { return w.grab().toImage(); }},
      {"main_window_tools_menu.png",
       [](MainWindow& w) { return WindowWithMenu(w, QStringLiteral("Ver&ktyg")); }},
      {"main_window_go_to_page.png", WindowWithGoToPage},
      {"main_window_scrolled.png", WindowScrolledSideways},
      {"main_window_empty.png", EmptyWindow},
      {"themes.png",
       [](MainWindow& w) {
         const QImage classic = WindowInTheme(w, 0);  // "Standard"
         const QImage office = WindowInTheme(w, 6);   // "Office 2007"
         return SideBySide(classic, office);
       }},
  };
  const QDir folder(QString::fromLocal8Bit(argv[1]));
  int status = 0;
  QTimer::singleShot(500, &window, [&] {
    for (const Shot& shot : shots) {
      const QString path = folder.filePath(QString::fromUtf8(shot.file));
      if (!shot.take(window).save(path)) {
        std::fprintf(stderr, "cannot write %s\n", path.toLocal8Bit().constData());
        status = 1;
      }
    }
    const QString options = folder.filePath(QStringLiteral("options_dialog.png"));
    if (!sw::gui::SaveOptionsDialogPicture(window, settings, options)) {
      std::fprintf(stderr, "cannot write %s\n", options.toLocal8Bit().constData());
      status = 1;
    }
    QApplication::quit();
  });
  QApplication::exec();
  return status;
}
