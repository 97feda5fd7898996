// The window's menus, toolbars and commands: what they show, and what each command does when it is
// triggered by id, through its QAction as a click or a key would.
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "base/file_io.h"
#include "gui/command_table.h"
#include "gui/preview_grid.h"
#include "gui/theme_look.h"
#include "session/theme_palette.h"
#include "started_window.h"

using sw::testing::StartedWindow;
using List = std::vector<std::string>;

namespace {

QAction* Command(StartedWindow& started, int id) {
  QAction* action = started.window->Command(id);
  if (!action) throw std::runtime_error("no command " + std::to_string(id));
  return action;
}

std::string Setting(StartedWindow& started, const char* key, const char* section = "") {
  return started.install.settings.GetAppSetting(key, "<none>", section);
}

// The entries of a menu or a toolbar as "cmd<id>" (its caption is the command table's) or "> submenu title".
QStringList Entries(const QWidget* bar) {
  QStringList entries;
  for (const QAction* action : bar->actions())
    entries << (action->menu() ? QStringLiteral("> ") + action->text() : action->objectName());
  return entries;
}

QMenu* SubMenu(const QMenu* menu, const QString& title) {
  for (const QAction* action : menu->actions())
    if (action->menu() && action->text() == title) return action->menu();
  return nullptr;
}

QList<QToolBar*> ToolBars(StartedWindow& started) {
  return started.window->findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
}

QToolBar* ToolBar(StartedWindow& started, const QString& title) {
  for (QToolBar* bar : ToolBars(started))
    if (bar->windowTitle() == title) return bar;
  return nullptr;
}

QStringList CheckedThemes(StartedWindow& started) {
  QStringList checked;
  for (int id : {130, 131, 132, 133, 143, 135})
    if (Command(started, id)->isChecked()) checked << Command(started, id)->objectName();
  return checked;
}

QColor Background(StartedWindow& started, const char* name) {
  auto* widget = started.window->findChild<QWidget*>(QString::fromLatin1(name));
  return widget->palette().color(QPalette::Window);
}

int Rows(StartedWindow& started) {
  return started.Grid()->model()->rowCount();
}

void ShipDefaults(sw::testing::FakeInstallation& install) {
  std::filesystem::create_directories(install.Host("Program"));
  std::filesystem::copy_file(std::filesystem::path(SW_SOURCE_DIR) / "src/gui/Init.reg",
                             install.Host("Program/Init.reg"));
}

}  // namespace

// What the toggles, themes, layout and reset store and when is the session's (tests/session); here each
// command is checked to reach it and the window to follow.
class CommandBarsTest : public QObject {
  Q_OBJECT

 private slots:
  void menusAndToolbarsShowTheCommandTableInOrderTwoBarsToARow();
  void togglesStoreTheirStateAndRedrawTheGrid();
  void fixExportInsertsTheColumnAndDrawsTheMarks();
  void themesCheckOneEntryAndColourTheWindow();
  void generateStaysDisabledWhileTheIniFileIsToBeEdited();
  void toolbarLayoutComesBackAtTheNextStart();
  void resetAsksThenRestoresTheDefaultsAndOpensTheWindowAgain();
  void commandsWithoutActionsOrFailingOnesLeaveTheWindowWorking();
  void toolCommandsOpenTheirDialogsAndPrograms();
  void keysReachTheCommandsAndTextBoxesKeepCtrlVAndCtrlA();
};

void CommandBarsTest::menusAndToolbarsShowTheCommandTableInOrderTwoBarsToARow() {
  StartedWindow started;
  QMenuBar* bar = started.window->menuBar();
  QCOMPARE(bar->objectName(), QStringLiteral("Meny"));
  QCOMPARE(bar->windowTitle(), QStringLiteral("Meny"));
  QCOMPARE(Entries(bar), (QStringList{"> &Arkiv", "> &Visa", "> Ver&ktyg", QString::fromUtf8("> &Hjälp")}));

  const auto menu = [bar](int index) { return bar->actions().at(index)->menu(); };
  QCOMPARE(Entries(menu(0)), (QStringList{"cmd201", "cmd202", "", "cmd203", "cmd204", "",
                                          "> &Senaste textfiler", "", "cmd403", "cmd100"}));
  QCOMPARE(Entries(menu(1)), (QStringList{QString::fromUtf8("> &Verktygsfält"), "> &Utseende"}));
  QCOMPARE(Entries(SubMenu(menu(1), QString::fromUtf8("&Verktygsfält"))), QStringList{"cmd59392"});
  QCOMPARE(Entries(SubMenu(menu(1), QStringLiteral("&Utseende"))),
           (QStringList{"cmd130", "cmd131", "cmd132", "cmd133", "cmd143", "cmd135"}));
  QCOMPARE(Entries(menu(2)), (QStringList{"cmd307", "cmd303", "cmd302", "cmd304"}));
  QCOMPARE(Entries(menu(3)), (QStringList{"cmd502", "cmd601"}));

  // The toolbars, in order of creation.
  QStringList titles;
  for (QToolBar* toolbar : ToolBars(started)) titles << toolbar->windowTitle();
  QCOMPARE(titles, (QStringList{"Standard", QString::fromUtf8("Utför"), "Utseende", "Filer",
                                QString::fromUtf8("Av/På"), "VOLTARIS-rapport"}));
  const auto bars = ToolBars(started);
  QCOMPARE(Entries(bars[0]), (QStringList{"cmd307", "cmd303", "cmd302"}));
  QCOMPARE(Entries(bars[1]), (QStringList{"cmd402", "cmd401", "cmd403"}));
  QCOMPARE(Entries(bars[2]), (QStringList{"cmd130", "cmd131", "cmd132", "cmd133", "cmd143", "cmd135"}));
  QCOMPARE(Entries(bars[4]), (QStringList{"cmd305", "cmd306", "cmd707", "cmd308"}));
  QCOMPARE(Entries(bars[5]), (QStringList{"cmd704", "cmd706"}));
  // "Filer" hosts the template-directory picker under its caption.
  auto* picker = bars[3]->findChild<QComboBox*>(QStringLiteral("cboRdsDir"));
  QVERIFY(picker && picker->isVisible());
  auto* caption = bars[3]->findChild<QLabel*>(QStringLiteral("lblRdsDir"));
  QCOMPARE(caption->text(), QStringLiteral("Katalog rapportmallar(RDS)"));
  QCOMPARE(caption->buddy(), picker);
  // At the top, two to a row, in that order; in a window 1000 pixels wide (as the README shows it)
  // every button is in sight, none in an overflow menu.
  started.window->resize(1000, 640);
  QTRY_COMPARE(started.window->width(), 1000);
  QApplication::processEvents();
  for (int i = 0; i < bars.size(); ++i) {
    QCOMPARE(started.window->toolBarArea(bars[i]), Qt::TopToolBarArea);
    if (i % 2 == 1) {
      QCOMPARE(bars[i]->geometry().top(), bars[i - 1]->geometry().top());
      QVERIFY(bars[i]->geometry().left() > bars[i - 1]->geometry().left());
    } else if (i > 0) {
      QVERIFY(bars[i]->geometry().top() > bars[i - 1]->geometry().top());
    }
    for (QAction* action : bars[i]->actions())
      QVERIFY2(bars[i]->widgetForAction(action)->isVisible(), qPrintable(action->objectName()));
  }

  // Every command shows the command table's texts, on its toolbar button too.
  for (const auto& text : sw::gui::CommandTexts()) {
    QAction* action = Command(started, text.id);
    const QByteArray where = QByteArray::number(text.id);
    QVERIFY2(action->objectName() == QStringLiteral("cmd%1").arg(text.id), where);
    QVERIFY2(action->text() == QString::fromStdString(text.caption), where);
    if (!text.toolTip.empty()) QVERIFY2(action->toolTip() == QString::fromStdString(text.toolTip), where);
    QVERIFY2(action->statusTip() == QString::fromStdString(text.description), where);
    QVERIFY2(action->isCheckable() == text.checkable, where);
    QVERIFY2(action->shortcut().toString(QKeySequence::PortableText) == QString::fromStdString(text.shortcut),
             where);
    for (QToolBar* toolbar : bars) {
      if (auto* button = qobject_cast<QToolButton*>(toolbar->widgetForAction(action))) {
        const std::string& shown = text.toolbarCaption.empty() ? text.caption : text.toolbarCaption;
        QVERIFY2(button->text() == QString::fromStdString(shown), where);
      }
    }
  }
}

void CommandBarsTest::togglesStoreTheirStateAndRedrawTheGrid() {
  StartedWindow started([](sw::testing::FakeInstallation& install) {
    // A dump with an empty line and cells that end in "/2".
    install.Write("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt",
                  "%+A1 Panel%\r\n\tX1\t1\tPump/2\r\n\t \t \t \r\n\tX1\t2\tLampa\r\n\tX1\t3\tUttag\r\n");
    install.settings.SaveAppSetting("IncludeEmptyRows", "0");
  });
  const int tidy = Rows(started);
  const auto pumpShown = [&](const char* text) {
    const auto* model = started.Grid()->model();
    for (int r = 0; r < model->rowCount(); ++r)
      if (model->index(r, 3).data().toString() == QLatin1String(text)) return true;
    return false;
  };
  QVERIFY(pumpShown("Pump/2"));
  for (const auto& [id, key] :
       {std::pair{305, "IncludeEmptyRows"}, {306, "UseSlashTwo"}, {707, "SingleSheet"}}) {
    QAction* toggle = Command(started, id);
    const bool was = toggle->isChecked();
    toggle->trigger();
    QCOMPARE(Setting(started, key), std::string(was ? "0" : "1"));
    QCOMPARE(toggle->isChecked(), !was);
  }
  // The grid was read again with its empty row, and shows the cells without "/2".
  QVERIFY(Rows(started) > tidy);
  QVERIFY(pumpShown("Pump") && !pumpShown("Pump/2"));
  // Changed through the session, as the options dialog does, the toolbar follows too
  // (optionsActAtOnceOrOnOkAndAvbrytDropsTheRest).
}

// Asking first, and leaving the table as it was on "Nej", is the session's (tests/session).
void CommandBarsTest::fixExportInsertsTheColumnAndDrawsTheMarks() {
  StartedWindow started;
  auto* model = started.Grid()->model();
  const int columns = model->columnCount();
  started.install.dialogs.answers = {sw::base::MessageAnswer::kYes};
  Command(started, 308)->trigger();
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(model->columnCount(), columns + 1);
  // The placement's name moved into the new first column, and the marks are drawn on the new table.
  QCOMPARE(model->index(0, 0).data().toString(), QStringLiteral("+A1 Panel"));
  bool marked = false;
  for (int r = 0; r < model->rowCount(); ++r)
    marked = marked ||
             model->index(r, 0).data(Qt::BackgroundRole).value<QBrush>().color() == QColor(0xFF, 0xFF, 0xC0);
  QVERIFY(marked);
}

// Which number each look stores and which colours it has is the session's (tests/session); here every
// look's command reaches it, checks its entry alone and paints the window and the application with it.
void CommandBarsTest::themesCheckOneEntryAndColourTheWindow() {
  StartedWindow started(
      [](sw::testing::FakeInstallation& install) { install.settings.SaveAppSetting("Theme", "4"); });
  QCOMPARE(CheckedThemes(started), QStringList{"cmd143"});
  for (const auto& theme : sw::session::Themes()) {
    Command(started, theme.commandId)->trigger();
    QCOMPARE(Setting(started, "Theme"), std::to_string(theme.number));
    QCOMPARE(CheckedThemes(started), QStringList{QStringLiteral("cmd%1").arg(theme.commandId)});
    const QColor face = sw::gui::FromPackedColour(theme.colour);
    QCOMPARE(sw::gui::FromPackedColour(started.window->ThemeColour()), face);
    for (const char* name : {"fraFiles", "fraFields", "lblField0", "lblField29"})
      QCOMPARE(Background(started, name), face);
    const auto colours = sw::session::PaletteOf(theme);
    QCOMPARE(QApplication::palette().color(QPalette::Window), face);
    QCOMPARE(QApplication::palette().color(QPalette::Button), sw::gui::FromPackedColour(colours.button));
    QCOMPARE(QApplication::palette().color(QPalette::Highlight),
             sw::gui::FromPackedColour(colours.highlight));
    QCOMPARE(QApplication::style()->name(),
             QString::fromLatin1(theme.style == sw::session::ThemeStyle::kClassic ? "windows" : "fusion"));
  }
  // Choosing the checked entry again keeps it checked.
  Command(started, 135)->trigger();
  QCOMPARE(CheckedThemes(started), QStringList{"cmd135"});
}

void CommandBarsTest::generateStaysDisabledWhileTheIniFileIsToBeEdited() {
  std::string exampleIni;
  StartedWindow started([&exampleIni](sw::testing::FakeInstallation& install) {
    sw::testing::WithExampleTemplate(install);
    exampleIni = *sw::base::ReadWholeFile(install.Host("Projektmallar/PANEL.ini"));
    // Too few [Sheet] entries: generation tells so and opens the file for editing.
    install.Write(
        "Projektmallar/PANEL.ini",
        "[Tabs]\r\nTemplate=Mall\r\nCommon=Mall\r\n[Common]\r\nProjekt=C6\r\n[Sheet]\r\nSTARTROW=7\r\n");
  });
  auto* window = started.window.get();
  started.install.dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel.xlsx"));
  window->Dispatcher().Dispatch(sw::gui::kCommandGenerate);
  QVERIFY(!started.install.dialogs.messages.empty());
  QVERIFY(!std::filesystem::exists(started.install.Host("Ut/Panel.xlsx")));

  // Until the file is put right and a run gets past the INI check, the view switch keeps generation off.
  Command(started, 401)->trigger();
  QVERIFY(!Command(started, 403)->isEnabled());
  Command(started, 402)->trigger();
  QVERIFY(!Command(started, 403)->isEnabled());
  started.install.Write("Projektmallar/PANEL.ini", exampleIni);
  Command(started, 401)->trigger();
  QVERIFY(!Command(started, 403)->isEnabled());
  Command(started, 402)->trigger();

  // A run that gets past the INI check clears it.
  started.install.dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel.xlsx"));
  window->Dispatcher().Dispatch(sw::gui::kCommandGenerate);
  QVERIFY(std::filesystem::exists(started.install.Host("Ut/Panel.xlsx")));
  Command(started, 401)->trigger();
  QVERIFY(Command(started, 403)->isEnabled());
}
void CommandBarsTest::toolbarLayoutComesBackAtTheNextStart() {
  StartedWindow started;
  started.window->addToolBar(Qt::BottomToolBarArea, ToolBar(started, QString::fromUtf8("Av/På")));
  started.window->addToolBar(Qt::LeftToolBarArea, ToolBar(started, QStringLiteral("Utseende")));
  Command(started, 59392)->trigger();
  QVERIFY(ToolBar(started, QStringLiteral("Standard"))->isHidden());
  QVERIFY(started.window->close());

  started.Reopen();
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QString::fromUtf8("Av/På"))), Qt::BottomToolBarArea);
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QStringLiteral("Utseende"))), Qt::LeftToolBarArea);
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QStringLiteral("Filer"))), Qt::TopToolBarArea);
  QVERIFY(ToolBar(started, QStringLiteral("Standard"))->isHidden());
  QVERIFY(!Command(started, 59392)->isChecked());
  Command(started, 59392)->trigger();
  QVERIFY(ToolBar(started, QStringLiteral("Standard"))->isVisible());
  QVERIFY(Command(started, 59392)->isChecked());
}

void CommandBarsTest::resetAsksThenRestoresTheDefaultsAndOpensTheWindowAgain() {
  StartedWindow started(ShipDefaults);
  Command(started, 143)->trigger();
  started.window->addToolBar(Qt::BottomToolBarArea, ToolBar(started, QString::fromUtf8("Av/På")));
  started.install.settings.SaveAppSetting("Layout", "from an earlier version");
  started.settings.saved.clear();

  // Answered no: nothing changes.
  started.install.dialogs.answers = {sw::base::MessageAnswer::kNo};
  Command(started, 502)->trigger();
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
  QVERIFY(started.window->isVisible() && !started.window->RestartRequested());
  QVERIFY(started.settings.saved.empty());

  started.install.dialogs.answers = {sw::base::MessageAnswer::kYes};
  started.window->Dispatcher().Dispatch(502);
  // Closed with its saves, then the layout forgotten and the defaults written.
  QVERIFY(!started.window->isVisible());
  QVERIFY(started.window->RestartRequested());
  QCOMPARE(started.settings.saved,
           (List{"frmMain\\Top", "frmMain\\Left", "frmMain\\Height", "frmMain\\Width", "frmMain\\WinState",
                 "Width", "Height", "WinState", "LastVoltDmp", "LastRdsDir", "Layout\\frmMain", "Theme"}));
  QCOMPARE(Setting(started, "Theme"), std::string("2"));
  QCOMPARE(Setting(started, "frmMain", "Layout"), std::string("<none>"));
  QCOMPARE(Setting(started, "Layout"), std::string("<none>"));

  started.Reopen();
  QCOMPARE(CheckedThemes(started), QStringList{"cmd132"});
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QString::fromUtf8("Av/På"))), Qt::TopToolBarArea);
  QVERIFY(!started.window->RestartRequested());
}

void CommandBarsTest::commandsWithoutActionsOrFailingOnesLeaveTheWindowWorking() {
  StartedWindow started;
  auto& dispatcher = started.window->Dispatcher();
  const int rows = Rows(started);
  // The two keys the window takes without an action, and an id nothing uses, do nothing.
  for (int id : {901, 902}) {
    Command(started, id)->trigger();
    QVERIFY(!dispatcher.Dispatch(id));
  }
  QVERIFY(!dispatcher.Dispatch(12345));
  QCOMPARE(Rows(started), rows);
  QVERIFY(started.install.dialogs.messages.empty());
  // A command that fails says nothing; one that runs out of memory is told by its caption.
  dispatcher.On(303, [] { throw std::runtime_error("the workbook is gone"); });
  Command(started, 303)->trigger();
  QVERIFY(!dispatcher.Dispatch(303));
  QVERIFY(started.install.dialogs.messages.empty());
  dispatcher.On(sw::gui::kCommandEditTemplate, [] { throw std::bad_alloc(); });
  Command(started, sw::gui::kCommandEditTemplate)->trigger();
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
  const auto& message = started.install.dialogs.messages.front();
  QCOMPARE(message.text, std::string("7 - Slut på minne vid kommandot \"Redigera Excel-mall\"."));
  QCOMPARE(message.title, std::string("Fel"));
  // Still working: the next command does what it should.
  Command(started, 305)->trigger();
  QVERIFY(Rows(started) >= rows);
  QCOMPARE(Setting(started, "IncludeEmptyRows"), std::string("1"));
  QVERIFY(started.window->isVisible());
}
// The "Verktyg" and "Hjälp" commands reach what they open: a modal dialog with its caption, or the
// outside program (the test's launcher starts none, so the user is told).
void CommandBarsTest::toolCommandsOpenTheirDialogsAndPrograms() {
  StartedWindow started;
  const auto captionOfModalDialog = [&](int id) {
    QString caption;
    QTimer::singleShot(0, [&] {
      if (QWidget* dialog = QApplication::activeModalWidget()) {
        caption = dialog->windowTitle();
        dialog->close();
      }
    });
    Command(started, id)->trigger();
    return caption;
  };
  QCOMPARE(captionOfModalDialog(304), QString::fromUtf8("Alternativ"));
  QVERIFY(captionOfModalDialog(601).startsWith(QString::fromUtf8("Om ")));

  // The INI file goes to a text editor; the template, without Excel, on Windows ends on Excel's absence,
  // elsewhere on no desktop program taking it.
#ifdef _WIN32
  const std::string noExcel = "Kan ej starta Microsoft Excel.";
#else
  const std::string noExcel = "Det gick inte att starta";
#endif
  for (const auto& [id, told] :
       {std::pair<int, std::string>{302, "Det gick inte att starta"}, {303, noExcel}}) {
    started.install.dialogs.messages.clear();
    Command(started, id)->trigger();
    QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
    const std::string& text = started.install.dialogs.messages.front().text;
    QVERIFY2(text.starts_with(told), text.c_str());
  }
}
// The keys reach their commands with the toolbar hidden; the window takes Ctrl+V and Ctrl+A (doing nothing),
// but a text box keeps them.
void CommandBarsTest::keysReachTheCommandsAndTextBoxesKeepCtrlVAndCtrlA() {
  StartedWindow started;
  auto* window = started.window.get();
  ToolBar(started, QStringLiteral("VOLTARIS-rapport"))->hide();
  window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(window));
  QSignalSpy refresh(Command(started, 704), &QAction::triggered);
  QSignalSpy choose(Command(started, 706), &QAction::triggered);
  QSignalSpy paste(Command(started, 902), &QAction::triggered);
  QSignalSpy selectAll(Command(started, 901), &QAction::triggered);
  auto* grid = started.Grid();
  grid->setFocus();
  QTRY_VERIFY(grid->hasFocus());
  QTest::keyClick(grid, Qt::Key_F5);
  QCOMPARE(refresh.count(), 1);
  QTest::keyClick(grid, Qt::Key_O, Qt::ControlModifier);  // the scripted open dialog is cancelled
  QCOMPARE(choose.count(), 1);

  grid->setCurrentIndex(grid->model()->index(0, 0));
  const auto selected = grid->selectionModel()->selectedIndexes().size();
  QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(grid, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(selectAll.count(), 1);
  QCOMPARE(paste.count(), 1);
  // Taken and doing nothing: the grid's own select-all did not happen.
  QCOMPARE(grid->selectionModel()->selectedIndexes().size(), selected);
  QVERIFY(selected < grid->model()->rowCount() * grid->model()->columnCount());

  // The access key of "&Nästa" switches the view; in a text box there both keys do what they always do.
  QTest::keyClick(window, Qt::Key_N, Qt::AltModifier);
  QTRY_VERIFY(window->findChild<QWidget*>(QStringLiteral("fraFields"))->isVisible());
  auto* box = window->findChild<QLineEdit*>(QStringLiteral("txtField1"));
  box->setFocus();
  QTRY_VERIFY(box->hasFocus());
  box->deselect();
  QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
  QCOMPARE(box->selectedText(), QStringLiteral("AB"));
  QApplication::clipboard()->setText(QStringLiteral("Kraft"));
  QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(box->text(), QStringLiteral("Kraft"));
  QCOMPARE(window->Session().Fields().entries[1].text, std::string("Kraft"));
  QCOMPARE(selectAll.count(), 1);
  QCOMPARE(paste.count(), 1);
  // And that of "&Föregående" switches back.
  QTest::keyClick(window, Qt::Key_F, Qt::AltModifier);
  QTRY_VERIFY(window->findChild<QWidget*>(QStringLiteral("fraFiles"))->isVisible());
}

QTEST_MAIN(CommandBarsTest)
#include "command_bars_test.moc"
