#include "gui/command_bars.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "gui/command_dispatcher.h"
#include "gui/command_table.h"
#include "session/themes.h"

namespace sw::gui {
namespace {

QString Q(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QAction* MakeCommand(QMainWindow& window, const CommandDispatcher& dispatcher, int id) {
  const CommandText& text = CommandTextOf(id);
  auto* action = new QAction(Q(text.caption), &window);
  action->setObjectName(QStringLiteral("cmd%1").arg(id));
  // The button shows its caption as written, access key and "..." included.
  action->setIconText(Q(text.toolbarCaption.empty() ? text.caption : text.toolbarCaption));
  if (!text.toolTip.empty()) action->setToolTip(Q(text.toolTip));
  if (!text.description.empty()) action->setStatusTip(Q(text.description));
  action->setCheckable(text.checkable);
  if (!text.shortcut.empty()) {
    action->setShortcut(QKeySequence(Q(text.shortcut), QKeySequence::PortableText));
    // The key works wherever the command's button or entry is, a hidden toolbar's included.
    action->setShortcutContext(Qt::WindowShortcut);
    window.addAction(action);
  }
  QObject::connect(action, &QAction::triggered, &window, [&dispatcher, id] { dispatcher.Dispatch(id); });
  return action;
}

QToolBar* AddToolBar(QMainWindow& window, const char* title, const char* objectName) {
  QToolBar* bar = window.addToolBar(QString::fromUtf8(title));
  bar->setObjectName(QString::fromUtf8(objectName));
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  return bar;
}

// A key the window takes for itself: the action has no entry anywhere, so its command (which has no
// action) is all that happens. Text boxes keep the key for their own use.
void TakeKey(QMainWindow& window, const CommandDispatcher& dispatcher, int id, QKeySequence key) {
  auto* action = new QAction(&window);
  action->setObjectName(QStringLiteral("cmd%1").arg(id));
  action->setShortcut(key);
  action->setShortcutContext(Qt::WindowShortcut);
  QObject::connect(action, &QAction::triggered, &window, [&dispatcher, id] { dispatcher.Dispatch(id); });
  window.addAction(action);
}

}  // namespace

CommandBars BuildCommandBars(QMainWindow& window, const CommandDispatcher& dispatcher,
                             QWidget* filesControl) {
  auto command = [&](int id) { return MakeCommand(window, dispatcher, id); };
  QAction* undo = command(kCommandUndo);
  QAction* redo = command(kCommandRedo);
  QAction* findPlacement = command(kCommandFindPlacement);
  QAction* goToPage = command(kCommandGoToPage);
  QAction* generate = command(kCommandGenerate);
  QAction* exit = command(kCommandExit);
  QAction* standardBar = command(kCommandStandardToolbar);
  std::vector<QAction*> themes;
  for (const auto& theme : session::Themes()) themes.push_back(command(theme.commandId));
  QAction* editDump = command(kCommandEditDump);
  QAction* editTemplate = command(kCommandEditTemplate);
  QAction* editIni = command(kCommandEditIni);
  QAction* options = command(kCommandOptions);
  QAction* reset = command(kCommandResetAppearance);
  QAction* about = command(kCommandAbout);

  QMenuBar* bar = window.menuBar();
  bar->setObjectName(QStringLiteral("Meny"));
  bar->setWindowTitle(QStringLiteral("Meny"));
  auto addMenu = [](auto* into, const char* title, const char* objectName) {
    QMenu* menu = into->addMenu(QString::fromUtf8(title));
    menu->setObjectName(QString::fromUtf8(objectName));
    return menu;
  };
  QMenu* file = addMenu(bar, "&Arkiv", "mnuArkiv");
  file->addAction(undo);
  file->addAction(redo);
  file->addSeparator();
  file->addAction(findPlacement);
  file->addAction(goToPage);
  file->addSeparator();
  // Filled by the window with the dumps last chosen.
  addMenu(file, "&Senaste textfiler", "mnuSenaste");
  file->addSeparator();
  file->addAction(generate);
  file->addAction(exit);
  QMenu* view = addMenu(bar, "&Visa", "mnuVisa");
  QMenu* toolbars = addMenu(view, "&Verktygsfält", "mnuVerktygsfalt");
  toolbars->addAction(standardBar);
  QMenu* looks = addMenu(view, "&Utseende", "mnuUtseende");
  for (QAction* theme : themes) looks->addAction(theme);
  QMenu* tools = addMenu(bar, "Ver&ktyg", "mnuVerktyg");
  tools->addAction(editDump);
  tools->addAction(editTemplate);
  tools->addAction(editIni);
  tools->addAction(options);
  QMenu* help = addMenu(bar, "&Hjälp", "mnuHjalp");
  help->addAction(reset);
  help->addAction(about);

  CommandBars bars;
  QToolBar* standard = AddToolBar(window, "Standard", "barStandard");
  standard->addAction(editDump);
  standard->addAction(editTemplate);
  standard->addAction(editIni);
  QToolBar* run = AddToolBar(window, "Utför", "barUtfor");
  run->addAction(command(kCommandPrevious));
  run->addAction(command(kCommandNext));
  run->addAction(generate);
  // Three rows of two, so that every caption has room in a window of ordinary width: the buttons of an
  // overfull row would go into its overflow menu, out of sight and out of reach of their access keys.
  window.addToolBarBreak();
  QToolBar* look = AddToolBar(window, "Utseende", "barUtseende");
  for (QAction* theme : themes) look->addAction(theme);
  QToolBar* files = AddToolBar(window, "Filer", "barFiler");
  files->addWidget(filesControl);
  window.addToolBarBreak();
  QToolBar* toggles = AddToolBar(window, "Av/På", "barAvPa");
  toggles->addAction(command(kCommandIncludeEmptyRows));
  toggles->addAction(command(kCommandSlashTwo));
  toggles->addAction(command(kCommandSingleSheet));
  toggles->addAction(command(kCommandFixExport));
  QToolBar* report = AddToolBar(window, "VOLTARIS-rapport", "barVoltarisRapport");
  report->addAction(command(kCommandRefresh));
  report->addAction(command(kCommandChooseTextFile));
  bars.toolbars = {standard, run, look, files, toggles, report};

  // The menu entry shows whether the toolbar is there, however it came or went.
  standardBar->setChecked(true);
  QObject::connect(standard, &QToolBar::visibilityChanged, standardBar,
                   [standard, standardBar] { standardBar->setChecked(!standard->isHidden()); });

  TakeKey(window, dispatcher, kCommandPaste, QKeySequence(Qt::CTRL | Qt::Key_V));
  TakeKey(window, dispatcher, kCommandSelectAll, QKeySequence(Qt::CTRL | Qt::Key_A));
  return bars;
}

}  // namespace sw::gui
