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
#include <QWidgetAction>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "gui/command_table.h"
#include "gui/preview_grid.h"
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

// The entries of a menu as "cmd<id> caption" or "> submenu title".
QStringList Entries(const QMenu* menu) {
  QStringList entries;
  for (const QAction* action : menu->actions()) {
    if (action->menu()) {
      entries << QStringLiteral("> ") + action->text();
    } else {
      entries << action->objectName() + QStringLiteral(" ") + action->text();
    }
  }
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

QColor Background(QWidget* widget) {
  return widget->palette().color(QPalette::Window);
}

QColor Packed(std::int32_t colour) {
  const auto value = static_cast<std::uint32_t>(colour);
  return QColor(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                static_cast<int>((value >> 16) & 0xFF));
}

int Rows(StartedWindow& started) {
  return started.Grid()->model()->rowCount();
}

// The first cell of the grid that holds `text` as its whole text, as (row, column); (-1, -1) if none.
std::pair<int, int> Find(StartedWindow& started, const QString& text) {
  const auto* model = started.Grid()->model();
  for (int r = 0; r < model->rowCount(); ++r)
    for (int c = 0; c < model->columnCount(); ++c)
      if (model->index(r, c).data().toString() == text) return {r, c};
  return {-1, -1};
}

// A dump with an empty line and cells that end in "/2".
void WriteDumpWithEmptyRowAndSlashTwo(sw::testing::FakeInstallation& install) {
  install.Write("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt",
                "%+A1 Panel%\r\n\tX1\t1\tPump/2\r\n\t \t \t \r\n\tX1\t2\tLampa\r\n\tX1\t3\tUttag\r\n");
}

void ShipDefaults(sw::testing::FakeInstallation& install) {
  std::filesystem::create_directories(install.Host("Program"));
  std::filesystem::copy_file(std::filesystem::path(SW_SOURCE_DIR) / "src/gui/Init.reg",
                             install.Host("Program/Init.reg"));
}

}  // namespace

class CommandBarsTest : public QObject {
  Q_OBJECT

 private slots:
  void menusListTheirEntriesInOrder();
  void commandsShowTheirCaptionsAndToolTips();
  void toolbarsStandInOrderOfCreation();
  void includeEmptyRowsStoresAndReloadsOrTidies();
  void slashTwoStoresAndReloadsOrTidies();
  void singleSheetStoresItsStateAndFollowsTheSession();
  void fixExportAsksInsertsTheColumnAndDrawsTheMarks();
  void themesStoreTheirNumbersAndCheckOneEntry();
  void aStartedThemeAboveFiveShowsAsTwo();
  void viewSwitchSetsTheEnabledStates();
  void generateStaysDisabledWhileTheIniFileIsToBeEdited();
  void standardToolbarIsShownAndHiddenFromTheMenu();
  void toolbarLayoutComesBackAtTheNextStart();
  void resetAnsweredNoChangesNothing();
  void resetWithoutTheDefaultsFileChangesNothing();
  void resetRestoresTheDefaultsAndOpensTheWindowAgain();
  void commandsWithoutActionsOrFailingOnesLeaveTheWindowWorking();
  void commandThatRunsOutOfMemoryIsToldByItsCaption();
  void toolCommandsOpenTheirDialogsAndPrograms();
  void windowTakesCtrlVAndCtrlAButTextBoxesKeepThem();
  void accessKeysReachTheCommands();
  void usualKeysReachTheirCommands();
};

void CommandBarsTest::menusListTheirEntriesInOrder() {
  StartedWindow started;
  QMenuBar* bar = started.window->menuBar();
  QCOMPARE(bar->objectName(), QStringLiteral("Meny"));
  QCOMPARE(bar->windowTitle(), QStringLiteral("Meny"));
  QStringList titles;
  for (const QAction* action : bar->actions()) titles << action->text();
  QCOMPARE(titles, (QStringList{"&Arkiv", "&Visa", "Ver&ktyg", QString::fromUtf8("&Hjälp")}));

  const auto menu = [bar](int index) { return bar->actions().at(index)->menu(); };
  QCOMPARE(Entries(menu(0)),
           (QStringList{QString::fromUtf8("cmd201 &Ångra"), QString::fromUtf8("cmd202 &Gör om"), " ",
                        QString::fromUtf8("cmd203 Sö&k placering..."),
                        QString::fromUtf8("cmd204 Gå till si&da..."), " ", "> &Senaste textfiler", " ", "cmd403 Generera Excel-dokument", "cmd100 &Avsluta"}));
  QCOMPARE(Entries(menu(1)), (QStringList{QString::fromUtf8("> &Verktygsfält"), "> &Utseende"}));
  QCOMPARE(Entries(SubMenu(menu(1), QString::fromUtf8("&Verktygsfält"))),
           (QStringList{"cmd59392 &Standard"}));
  QCOMPARE(Entries(SubMenu(menu(1), QStringLiteral("&Utseende"))),
           (QStringList{"cmd130 Office XP", "cmd131 Standard", "cmd132 Office 2003", "cmd133 Normal XP",
                        "cmd143 Visual Studio 2005", "cmd135 Office 2007"}));
  QCOMPARE(Entries(menu(2)),
           (QStringList{"cmd307 Redigera aktuell &rapport-textfil", "cmd303 Redigera Excel-mall",
                        "cmd302 Redigera mallens &ini-fil", "cmd304 Al&ternativ"}));
  QCOMPARE(Entries(menu(3)), (QStringList{QString::fromUtf8("cmd502 Återställ menyer till standard..."),
                                          "cmd601 &Om Sheetwright..."}));
}

void CommandBarsTest::commandsShowTheirCaptionsAndToolTips() {
  struct Row {
    int id;
    const char* caption;
    const char* toolTip;  // nullptr: none of its own
    const char* button;   // the toolbar button's text; nullptr: not on a toolbar
  };
  const Row table[] = {
      {100, "&Avsluta", nullptr, nullptr},
      {130, "Office XP", nullptr, "Office XP"},
      {131, "Standard", nullptr, "Standard"},
      {132, "Office 2003", nullptr, "Office 2003"},
      {133, "Normal XP", nullptr, "Normal XP"},
      {143, "Visual Studio 2005", nullptr, "Visual Studio 2005"},
      {135, "Office 2007", nullptr, "Office 2007"},
      {302, "Redigera mallens &ini-fil", "Redigera Excel-mallens INI-fil med Anteckningsverktyget",
       "Redigera mallens &ini-fil"},
      {303, "Redigera Excel-mall", "Redigera Excel-mallen med Excel", "Redigera Excel-mall"},
      {304, "Al&ternativ", nullptr, nullptr},
      {305, "Tomrader", "Inkludera tomrader i rapportfilen", "Tomrader"},
      {306, "/2", "Visa avslutande '/2'", "/2"},
      {307, "Redigera aktuell &rapport-textfil", "Redigera vald rapport-textfil med Excel",
       "Redigera aktuell &rapport-textfil"},
      {308, "Infoga kolumn för yttre förbindningstabell genererad av VOLTARIS 15",
       "Infoga kolumn för yttre förbindningstabell genererad av VOLTARIS 15",
       "Infoga kolumn för yttre förbindningstabell genererad av VOLTARIS 15"},
      {401, "&Nästa", "Gå till vy med textfält för ritningshuvud", "&Nästa"},
      {402, "&Föregående", "Gå till vy med rapportinnehåll", "&Föregående"},
      {403, "Generera Excel-dokument", "Starta generering av Excel-dokument av rapporten",
       "&Generera Excel-dokument"},
      {502, "Återställ menyer till standard...", nullptr, nullptr},
      {601, "&Om Sheetwright...", nullptr, nullptr},
      {704, "Uppdatera VOLTARIS-rapport", "Uppdatera VOLTARIS-rapport", "Uppdatera VOLTARIS-rapport"},
      {706, "Välj textfil...", nullptr, "Välj textfil..."},
      {707, "Enkelblad", "Ett blad per fil", "Enkelblad"},
  };
  StartedWindow started;
  for (const Row& row : table) {
    QAction* action = Command(started, row.id);
    const QByteArray where = QByteArray::number(row.id);
    QVERIFY2(action->text() == QString::fromUtf8(row.caption), where);
    if (row.toolTip) QVERIFY2(action->toolTip() == QString::fromUtf8(row.toolTip), where);
    if (!row.button) continue;
    QToolButton* button = nullptr;
    for (QToolBar* bar : ToolBars(started)) {
      if (auto* found = qobject_cast<QToolButton*>(bar->widgetForAction(action))) button = found;
    }
    QVERIFY2(button, where);
    QVERIFY2(button->text() == QString::fromUtf8(row.button), where);
  }
  QCOMPARE(Command(started, 403)->statusTip(), QStringLiteral("Genererar Excel-dokument"));
  for (int id : {305, 306, 707}) QVERIFY(Command(started, id)->isCheckable());
  QVERIFY(!Command(started, 308)->isCheckable());
}

void CommandBarsTest::toolbarsStandInOrderOfCreation() {
  StartedWindow started;
  QStringList titles;
  for (QToolBar* bar : ToolBars(started)) titles << bar->windowTitle();
  QCOMPARE(titles, (QStringList{"Standard", QString::fromUtf8("Utför"), "Utseende", "Filer",
                                QString::fromUtf8("Av/På"), "VOLTARIS-rapport"}));
  const auto names = [](QToolBar* bar) {
    QStringList list;
    for (const QAction* action : bar->actions()) list << action->objectName();
    return list;
  };
  const auto bars = ToolBars(started);
  QCOMPARE(names(bars[0]), (QStringList{"cmd307", "cmd303", "cmd302"}));
  QCOMPARE(names(bars[1]), (QStringList{"cmd402", "cmd401", "cmd403"}));
  QCOMPARE(names(bars[2]), (QStringList{"cmd130", "cmd131", "cmd132", "cmd133", "cmd143", "cmd135"}));
  QCOMPARE(names(bars[4]), (QStringList{"cmd305", "cmd306", "cmd707", "cmd308"}));
  QCOMPARE(names(bars[5]), (QStringList{"cmd704", "cmd706"}));
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
}

void CommandBarsTest::includeEmptyRowsStoresAndReloadsOrTidies() {
  StartedWindow started([](sw::testing::FakeInstallation& install) {
    WriteDumpWithEmptyRowAndSlashTwo(install);
    install.settings.SaveAppSetting("IncludeEmptyRows", "0");
  });
  QAction* toggle = Command(started, 305);
  QVERIFY(!toggle->isChecked());
  const int tidy = Rows(started);

  toggle->trigger();
  QCOMPARE(Setting(started, "IncludeEmptyRows"), std::string("1"));
  QVERIFY(toggle->isChecked());
  QVERIFY(Rows(started) > tidy);  // read again with its empty rows

  started.window->Dispatcher().Dispatch(305);
  QCOMPARE(Setting(started, "IncludeEmptyRows"), std::string("0"));
  QVERIFY(!toggle->isChecked());
  QCOMPARE(Rows(started), tidy);

  // The options dialog changes it through the session; the toolbar follows.
  started.window->Session().ToggleIncludeEmptyRows();
  QVERIFY(toggle->isChecked());
}

void CommandBarsTest::slashTwoStoresAndReloadsOrTidies() {
  StartedWindow started(WriteDumpWithEmptyRowAndSlashTwo);
  QAction* toggle = Command(started, 306);
  QVERIFY(toggle->isChecked());  // "UseSlashTwo" defaults to "1"
  QVERIFY(Find(started, QStringLiteral("Pump/2")).first >= 0);

  toggle->trigger();
  QCOMPARE(Setting(started, "UseSlashTwo"), std::string("0"));
  QVERIFY(!toggle->isChecked());
  QCOMPARE(Find(started, QStringLiteral("Pump/2")).first, -1);
  QVERIFY(Find(started, QStringLiteral("Pump")).first >= 0);

  toggle->trigger();
  QCOMPARE(Setting(started, "UseSlashTwo"), std::string("1"));
  QVERIFY(toggle->isChecked());
  QVERIFY(Find(started, QStringLiteral("Pump/2")).first >= 0);
}

void CommandBarsTest::singleSheetStoresItsStateAndFollowsTheSession() {
  StartedWindow started;
  QAction* toggle = Command(started, 707);
  QVERIFY(!toggle->isChecked());
  QVERIFY(toggle->isEnabled());
  toggle->trigger();
  QCOMPARE(Setting(started, "SingleSheet"), std::string("1"));
  QVERIFY(toggle->isChecked());
  toggle->trigger();
  QCOMPARE(Setting(started, "SingleSheet"), std::string("0"));
  QVERIFY(!toggle->isChecked());
  started.window->Session().UseSingleSheet(true);
  QVERIFY(toggle->isChecked());
}

void CommandBarsTest::fixExportAsksInsertsTheColumnAndDrawsTheMarks() {
  StartedWindow started;
  auto* model = started.Grid()->model();
  const int columns = model->columnCount();
  started.install.dialogs.answers = {sw::base::MessageAnswer::kNo};
  Command(started, 308)->trigger();
  QCOMPARE(started.install.dialogs.messages.back().text,
           std::string("Infoga kolumn i yttre förbindningstabell?"));
  QCOMPARE(model->columnCount(), columns);

  started.install.dialogs.answers = {sw::base::MessageAnswer::kYes};
  Command(started, 308)->trigger();
  QCOMPARE(model->columnCount(), columns + 1);
  // The placement's name moved into the new first column, and the marks are drawn on the new table.
  QCOMPARE(model->index(0, 0).data().toString(), QStringLiteral("+A1 Panel"));
  bool marked = false;
  for (int r = 0; r < model->rowCount(); ++r)
    marked = marked ||
             model->index(r, 0).data(Qt::BackgroundRole).value<QBrush>().color() == QColor(0xFF, 0xFF, 0xC0);
  QVERIFY(marked);
}

void CommandBarsTest::themesStoreTheirNumbersAndCheckOneEntry() {
  StartedWindow started;
  QCOMPARE(CheckedThemes(started), QStringList{"cmd132"});  // theme 2 when nothing is stored
  const std::pair<int, const char*> themes[] = {{130, "1"}, {131, "0"}, {132, "2"},
                                                {133, "3"}, {143, "4"}, {135, "6"}};
  QColor previous;
  for (const auto& [id, number] : themes) {
    Command(started, id)->trigger();
    QCOMPARE(Setting(started, "Theme"), std::string(number));
    QCOMPARE(CheckedThemes(started), QStringList{QStringLiteral("cmd%1").arg(id)});
    const QColor colour = Packed(started.window->ThemeColour());
    QVERIFY(colour != previous);
    previous = colour;
    auto* window = started.window.get();
    QCOMPARE(Background(window->findChild<QWidget*>(QStringLiteral("fraFiles"))), colour);
    QCOMPARE(Background(window->findChild<QWidget*>(QStringLiteral("fraFields"))), colour);
    QCOMPARE(Background(window->findChild<QWidget*>(QStringLiteral("lblField0"))), colour);
    QCOMPARE(Background(window->findChild<QWidget*>(QStringLiteral("lblField29"))), colour);
  }
  // Choosing the checked entry again keeps it checked.
  Command(started, 135)->trigger();
  QCOMPARE(CheckedThemes(started), QStringList{"cmd135"});
  QCOMPARE(QApplication::style()->name(), QStringLiteral("fusion"));
  Command(started, 131)->trigger();
  QCOMPARE(QApplication::style()->name(), QStringLiteral("windows"));
}

void CommandBarsTest::aStartedThemeAboveFiveShowsAsTwo() {
  StartedWindow started(
      [](sw::testing::FakeInstallation& install) { install.settings.SaveAppSetting("Theme", "4"); });
  QCOMPARE(CheckedThemes(started), QStringList{"cmd143"});
  QCOMPARE(started.window->Theme(), 4);
  Command(started, 135)->trigger();  // Office 2007 stores 6 ...
  started.Reopen();
  QCOMPARE(CheckedThemes(started), QStringList{"cmd132"});  // ... which the next start shows as 2
  QCOMPARE(started.window->Theme(), 2);
  QCOMPARE(Setting(started, "Theme"), std::string("6"));  // and a start alone stores nothing
}

void CommandBarsTest::viewSwitchSetsTheEnabledStates() {
  StartedWindow started;
  QVERIFY(Command(started, 401)->isEnabled());
  QVERIFY(!Command(started, 402)->isEnabled());
  Command(started, 401)->trigger();
  QVERIFY(!Command(started, 401)->isEnabled());
  QVERIFY(Command(started, 402)->isEnabled());
  QVERIFY(Command(started, 403)->isEnabled());
  Command(started, 402)->trigger();
  QVERIFY(Command(started, 401)->isEnabled());
  QVERIFY(!Command(started, 402)->isEnabled());
  QVERIFY(Command(started, 403)->isEnabled());
}

void CommandBarsTest::generateStaysDisabledWhileTheIniFileIsToBeEdited() {
  const std::filesystem::path examples = std::filesystem::path(SW_SOURCE_DIR) / "examples";
  StartedWindow started([&examples](sw::testing::FakeInstallation& install) {
    std::filesystem::copy_file(examples / "yttre_forbindningstabell.xlsx",
                               install.Host("Projektmallar/PANEL.xlsx"),
                               std::filesystem::copy_options::overwrite_existing);
    // Too few [Sheet] entries: generation tells so and opens the file for editing.
    install.Write(
        "Projektmallar/PANEL.ini",
        "[Tabs]\r\nTemplate=Mall\r\nCommon=Mall\r\n[Common]\r\nProjekt=C6\r\n[Sheet]\r\nSTARTROW=7\r\n");
    std::filesystem::create_directories(install.Host("Ut"));
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
  std::filesystem::copy_file(examples / "yttre_forbindningstabell.ini",
                             started.install.Host("Projektmallar/PANEL.ini"),
                             std::filesystem::copy_options::overwrite_existing);

  // A run that gets past the INI check clears it.
  started.install.dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel.xlsx"));
  window->Dispatcher().Dispatch(sw::gui::kCommandGenerate);
  QVERIFY(std::filesystem::exists(started.install.Host("Ut/Panel.xlsx")));
  Command(started, 401)->trigger();
  QVERIFY(Command(started, 403)->isEnabled());
}

void CommandBarsTest::standardToolbarIsShownAndHiddenFromTheMenu() {
  StartedWindow started;
  QToolBar* standard = ToolBar(started, QStringLiteral("Standard"));
  QAction* entry = Command(started, 59392);
  QVERIFY(entry->isChecked());
  entry->trigger();
  QVERIFY(standard->isHidden());
  QVERIFY(!entry->isChecked());
  entry->trigger();
  QVERIFY(standard->isVisible());
  QVERIFY(entry->isChecked());
}

void CommandBarsTest::toolbarLayoutComesBackAtTheNextStart() {
  StartedWindow started;
  started.window->addToolBar(Qt::BottomToolBarArea, ToolBar(started, QString::fromUtf8("Av/På")));
  started.window->addToolBar(Qt::LeftToolBarArea, ToolBar(started, QStringLiteral("Utseende")));
  Command(started, 59392)->trigger();  // "Standard" hidden
  QVERIFY(started.window->close());
  QVERIFY(Setting(started, "frmMain", "Layout") != "<none>");

  started.Reopen();
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QString::fromUtf8("Av/På"))), Qt::BottomToolBarArea);
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QStringLiteral("Utseende"))), Qt::LeftToolBarArea);
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QStringLiteral("Filer"))), Qt::TopToolBarArea);
  QVERIFY(ToolBar(started, QStringLiteral("Standard"))->isHidden());
  QVERIFY(!Command(started, 59392)->isChecked());

  // A layout kept by an earlier version as the single value "Layout" is still read.
  const std::string saved = Setting(started, "frmMain", "Layout");
  started.install.settings.DeleteAppSetting("frmMain", "Layout");
  started.install.settings.SaveAppSetting("Layout", saved);
  started.window->hide();  // closed without saving
  started.Reopen();
  QCOMPARE(started.window->toolBarArea(ToolBar(started, QString::fromUtf8("Av/På"))), Qt::BottomToolBarArea);
  QVERIFY(started.window->close());
  QCOMPARE(Setting(started, "Layout"), std::string("<none>"));
  QVERIFY(Setting(started, "frmMain", "Layout") != "<none>");
}

void CommandBarsTest::resetAnsweredNoChangesNothing() {
  StartedWindow started(ShipDefaults);
  Command(started, 143)->trigger();
  const auto before = started.install.settings.values;
  started.install.dialogs.answers = {sw::base::MessageAnswer::kNo};
  Command(started, 502)->trigger();
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(started.install.dialogs.messages[0].title, std::string("Återställning"));
  QVERIFY(started.window->isVisible());
  QVERIFY(!started.window->RestartRequested());
  QVERIFY(started.install.settings.values == before);
  QCOMPARE(CheckedThemes(started), QStringList{"cmd143"});
}

void CommandBarsTest::resetWithoutTheDefaultsFileChangesNothing() {
  StartedWindow started;
  Command(started, 143)->trigger();
  const auto before = started.install.settings.values;
  started.install.dialogs.answers = {sw::base::MessageAnswer::kYes};
  Command(started, 502)->trigger();
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
  QVERIFY(started.window->isVisible());
  QVERIFY(!started.window->RestartRequested());
  QVERIFY(started.install.settings.values == before);
}

void CommandBarsTest::resetRestoresTheDefaultsAndOpensTheWindowAgain() {
  StartedWindow started(ShipDefaults);
  Command(started, 143)->trigger();
  started.window->addToolBar(Qt::BottomToolBarArea, ToolBar(started, QString::fromUtf8("Av/På")));
  started.install.settings.SaveAppSetting("Layout", "from an earlier version");
  started.settings.saved.clear();

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

void CommandBarsTest::commandThatRunsOutOfMemoryIsToldByItsCaption() {
  StartedWindow started;
  auto& dispatcher = started.window->Dispatcher();
  const int rows = Rows(started);
  dispatcher.On(sw::gui::kCommandEditTemplate, [] { throw std::bad_alloc(); });
  Command(started, sw::gui::kCommandEditTemplate)->trigger();
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});
  const auto& message = started.install.dialogs.messages.front();
  QCOMPARE(message.text, std::string("7 - Slut på minne vid kommandot \"Redigera Excel-mall\"."));
  QCOMPARE(message.title, std::string("Fel"));
  // The window goes on as before.
  Command(started, 305)->trigger();
  QVERIFY(Rows(started) >= rows);
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
  dispatcher.On(303, [] { throw std::runtime_error("the workbook is gone"); });
  Command(started, 303)->trigger();
  QVERIFY(!dispatcher.Dispatch(303));
  QVERIFY(started.install.dialogs.messages.empty());
  // Still working: the next command does what it should.
  Command(started, 305)->trigger();
  QVERIFY(Rows(started) >= rows);
  QCOMPARE(Setting(started, "IncludeEmptyRows"), std::string("1"));
  QVERIFY(started.window->isVisible());
}

void CommandBarsTest::windowTakesCtrlVAndCtrlAButTextBoxesKeepThem() {
  StartedWindow started;
  QSignalSpy paste(Command(started, 902), &QAction::triggered);
  QSignalSpy selectAll(Command(started, 901), &QAction::triggered);
  auto* grid = started.Grid();
  grid->setFocus();
  QTRY_VERIFY(grid->hasFocus());
  grid->setCurrentIndex(grid->model()->index(0, 0));
  const auto selected = grid->selectionModel()->selectedIndexes().size();
  QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(grid, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(selectAll.count(), 1);
  QCOMPARE(paste.count(), 1);
  // Taken and doing nothing: the grid's own select-all did not happen.
  QCOMPARE(grid->selectionModel()->selectedIndexes().size(), selected);
  QVERIFY(selected < grid->model()->rowCount() * grid->model()->columnCount());

  // In a text box both keys do what they always do there.
  Command(started, 401)->trigger();
  auto* box = started.window->findChild<QLineEdit*>(QStringLiteral("txtField1"));
  box->setFocus();
  QTRY_VERIFY(box->hasFocus());
  box->deselect();
  QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
  QCOMPARE(box->selectedText(), QStringLiteral("AB"));
  QApplication::clipboard()->setText(QStringLiteral("Kraft"));
  QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(box->text(), QStringLiteral("Kraft"));
  QCOMPARE(started.window->Session().Fields().entries[1].text, std::string("Kraft"));
  // And in the editable pickers.
  Command(started, 402)->trigger();
  auto* dump = started.window->findChild<QComboBox*>(QStringLiteral("cboVoltDump"));
  dump->lineEdit()->setFocus();
  QTRY_VERIFY(dump->lineEdit()->hasFocus());
  dump->lineEdit()->deselect();
  QTest::keyClick(dump->lineEdit(), Qt::Key_A, Qt::ControlModifier);
  QCOMPARE(dump->lineEdit()->selectedText(), dump->currentText());
  QCOMPARE(selectAll.count(), 1);
  QCOMPARE(paste.count(), 1);
}

void CommandBarsTest::accessKeysReachTheCommands() {
  StartedWindow started;
  auto* window = started.window.get();
  window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(window));
  QTest::keyClick(window, Qt::Key_N, Qt::AltModifier);
  QTRY_VERIFY(window->findChild<QWidget*>(QStringLiteral("fraFields"))->isVisible());
  QTest::keyClick(window, Qt::Key_F, Qt::AltModifier);
  QTRY_VERIFY(window->findChild<QWidget*>(QStringLiteral("fraFiles"))->isVisible());
}

void CommandBarsTest::usualKeysReachTheirCommands() {
  StartedWindow started;
  const auto keyOf = [&](int id) {
    return Command(started, id)->shortcut().toString(QKeySequence::PortableText);
  };
  QCOMPARE(keyOf(201), QStringLiteral("Ctrl+Z"));
  QCOMPARE(keyOf(202), QStringLiteral("Ctrl+Y"));
  QCOMPARE(keyOf(706), QStringLiteral("Ctrl+O"));
  QCOMPARE(keyOf(704), QStringLiteral("F5"));
  QCOMPARE(keyOf(601), QStringLiteral("F1"));

  // The keys work with the toolbar of their buttons hidden.
  auto* window = started.window.get();
  ToolBar(started, QStringLiteral("VOLTARIS-rapport"))->hide();
  window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(window));
  QSignalSpy refresh(Command(started, 704), &QAction::triggered);
  QSignalSpy choose(Command(started, 706), &QAction::triggered);
  auto* grid = started.Grid();
  grid->setFocus();
  QTRY_VERIFY(grid->hasFocus());
  QTest::keyClick(grid, Qt::Key_F5);
  QCOMPARE(refresh.count(), 1);
  QTest::keyClick(grid, Qt::Key_O, Qt::ControlModifier);  // the scripted open dialog is cancelled
  QCOMPARE(choose.count(), 1);
}

QTEST_MAIN(CommandBarsTest)
#include "command_bars_test.moc"
