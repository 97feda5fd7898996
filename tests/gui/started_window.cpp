#include "started_window.h"

#include <QTest>
#include <filesystem>

#include "gui/report_table_model.h"

namespace sw::testing {

// A real template with its INI file in place of the installation's placeholder, and a folder for results.
void WithExampleTemplate(FakeInstallation& install) {
  const std::filesystem::path examples = std::filesystem::path(SW_SOURCE_DIR) / "examples";
  std::filesystem::copy_file(examples / "yttre_forbindningstabell.xlsx",
                             install.Host("Projektmallar/PANEL.xlsx"),
                             std::filesystem::copy_options::overwrite_existing);
  std::filesystem::copy_file(examples / "yttre_forbindningstabell.ini",
                             install.Host("Projektmallar/PANEL.ini"),
                             std::filesystem::copy_options::overwrite_existing);
  std::filesystem::create_directories(install.Host("Ut"));
}

StartedWindow::StartedWindow(const std::function<void(FakeInstallation&)>& prepare, bool withCadFiles)
    : install(withCadFiles) {
  launcher.starts = false;
  launcher.runSucceeds = false;
  if (prepare) prepare(install);
  Reopen();
}

void StartedWindow::Reopen() {
  if (window && window->isVisible()) window->close();
  window.reset();
  window = std::make_unique<gui::MainWindow>(
      gui::MainWindowServices{.session = {.registry = install.registry,
                                          .settings = settings,
                                          .environment = install.environment,
                                          .dialogs = install.dialogs,
                                          .launcher = launcher,
                                          .startLog = &log,
                                          .programFolder = "C:\\Program\\"},
                              .openWorkbook =
                                  [this](const std::string& path) {
                                    opened.push_back(path);
                                    return workbookOpens;
                                  },
                              .defaultsMerger = &defaults});
  if (startSize.isValid()) window->resize(startSize);
  window->show();
  if (!QTest::qWaitForWindowExposed(window.get())) throw std::runtime_error("the window is not shown");
}

StartedWindow::~StartedWindow() {
  window.reset();
}

gui::PreviewGrid* StartedWindow::Grid() const {
  return window->findChild<gui::PreviewGrid*>(QStringLiteral("fgPreView"));
}

QPoint StartedWindow::RowPoint(int tableRow, int column) const {
  auto* grid = Grid();
  return grid->visualRect(grid->model()->index(tableRow - 1, column)).center();
}

}  // namespace sw::testing
