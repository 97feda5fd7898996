// The main window driven the way a user drives it: started over a fake CAD installation, clicked,
// right-clicked and typed into offscreen.
#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDebug>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <filesystem>
#include <functional>

#include "base/file_io.h"
#include "base/system_colours.h"
#include "gui/report_table_model.h"
#include "started_window.h"
#include "templates/short_date.h"

using sw::testing::StartedWindow;
using List = std::vector<std::string>;

namespace {

using sw::testing::WithExampleTemplate;

const QColor kGreen(0xC0, 0xFF, 0xC0);
const QColor kYellow(0xFF, 0xFF, 0xC0);

QColor Background(const QAbstractItemModel* model, int tableRow, int column) {
  return model->index(tableRow - 1, column).data(Qt::BackgroundRole).value<QBrush>().color();
}

bool HasPicture(const QAbstractItemModel* model, int tableRow, int column) {
  const QIcon icon = model->index(tableRow - 1, column).data(Qt::DecorationRole).value<QIcon>();
  if (icon.isNull()) return false;
  // The blank picture is fully transparent.
  const QImage image = icon.pixmap(12, 12).toImage();
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qAlpha(image.pixel(x, y)) != 0) return true;
  return false;
}

QString Column0(const QAbstractItemModel* model, int tableRow) {
  return model->index(tableRow - 1, 0).data().toString();
}

struct PopupEntry {
  QString name;
  QString caption;
  bool enabled = false;
};

// Right-clicks the grid's viewport (or `viewport`) at `point`; reads the popup's entries and chooses
// `choose` with the keyboard (or closes the popup when it is empty). Nothing when no popup came.
QList<PopupEntry> RightClick(StartedWindow& started, QPoint point, const QString& choose = {},
                             QWidget* viewport = nullptr) {
  QList<PopupEntry> entries;
  QTimer::singleShot(0, [&] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu) return;
    QAction* chosen = nullptr;
    for (QAction* action : menu->actions()) {
      entries.append({action->objectName(), action->text(), action->isEnabled()});
      if (action->objectName() == choose) chosen = action;
    }
    if (menu->objectName() != QStringLiteral("Popup")) entries.clear();
    if (chosen) {
      menu->setActiveAction(chosen);
      QTest::keyClick(menu, Qt::Key_Return);
    } else {
      menu->close();
    }
  });
  if (!viewport) viewport = started.Grid()->viewport();
  QTest::mouseClick(viewport, Qt::RightButton, {}, point);
  QContextMenuEvent event(QContextMenuEvent::Mouse, point, viewport->mapToGlobal(point));
  QCoreApplication::sendEvent(viewport, &event);
  return entries;
}

void DoubleClick(StartedWindow& started, QPoint point) {
  QWidget* viewport = started.Grid()->viewport();
  QTest::mouseClick(viewport, Qt::LeftButton, {}, point);
  QTest::mouseDClick(viewport, Qt::LeftButton, {}, point);
}

QByteArray Where(const QRect& frame) {
  QString text;
  QDebug(&text) << frame;
  return text.toUtf8();
}

QString StatusText(StartedWindow& started) {
  return started.window->findChild<QLabel*>(QStringLiteral("lblSummary"))->text();
}

}  // namespace

class MainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void startUpShowsTheLastDumpWithItsMarksAndCloseSavesInOrder();
  void firstStartIsCentredWithEveryButtonAndTwentyRowsAndARememberedPlaceStaysOnTheScreen();
  void popupEntriesFollowTheRowUnderThePointer();
  void undoAndRedoFollowEveryEdit();
  void droppedAndRecentDumpsLoad();
  void fieldBoxesCommitAndEnterMovesOn();
  void sheetNumberBoxTakesOnlyWhatItsFilterPasses();
  void generationAndTheDumpWorkbookShowTheirProgressAndResult();
  void viewSwitchDisablesGenerateForAnIniToEdit();
};

void MainWindowTest::startUpShowsTheLastDumpWithItsMarksAndCloseSavesInOrder() {
  StartedWindow started(
      [](sw::testing::FakeInstallation& install) { install.settings.SaveAppSetting("PageNoLen", "3"); });
  // The start's steps are the session's (tests/session); the window runs them and logs the end.
  QVERIFY(sw::base::ReadWholeFile(started.log.FilePath())->ends_with("\tMainform successfully loaded\r\n"));

  auto* window = started.window.get();
  const auto picker = [window](const char* name) {
    return window->findChild<QComboBox*>(QString::fromUtf8(name));
  };
  QCOMPARE(picker("cboRdsDir")->currentText(), QStringLiteral("C:\\Projektmallar\\"));
  QCOMPARE(picker("cboRdsFile")->currentText(), QStringLiteral("PANEL.xlsx"));
  QCOMPARE(picker("cboRdsFile")->palette().color(QPalette::Button), QColor(255, 255, 192));
  QVERIFY(window->findChild<QLabel*>(QStringLiteral("lblError"))->isHidden());
  QCOMPARE(picker("cboVoltDump")->currentText(),
           QStringLiteral("C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt"));
  // REPORT_FIRST 7 padded to PageNoLen 3.
  QCOMPARE(picker("cboSheetNo")->currentText(), QStringLiteral("007"));
  QCOMPARE(window->findChild<QLabel*>(QStringLiteral("lblField1"))->text(), QStringLiteral("Ritad av"));

  // The last dump is in the grid with its colours and pictures, and the status bar counts it.
  QCOMPARE(StatusText(started), QStringLiteral("Rader: 6   Placeringar: 1   Sidor: 2"));
  auto* model = started.Grid()->model();
  QCOMPARE(model->rowCount(), 6);
  // Headings from the template's INI file are the grid's header, not a row.
  QCOMPARE(model->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString().isEmpty(), false);
  QCOMPARE(Background(model, 1, 0), kGreen);                          // placement head
  QCOMPARE(model->index(1, 0).data(Qt::BackgroundRole), QVariant());  // ordinary row: window colour
  QCOMPARE(Background(model, 4, 0), kYellow);                         // page-break mark, every column
  QCOMPARE(Background(model, 4, 3), kYellow);
  QVERIFY(HasPicture(model, 4, 0));
  QVERIFY(!HasPicture(model, 4, 1));
  QVERIFY(!HasPicture(model, 3, 0));
  QCOMPARE(model->index(2, 3).data().toString(), QString::fromUtf8("Fläkt"));
  QCOMPARE(sw::gui::GridColour(sw::base::kSystemWindowBackground).isValid(), false);
  QCOMPARE(sw::gui::GridColour(0x00C0FFFF), kYellow);
  // Start-up itself stores only the dump it chose.
  QCOMPARE(started.settings.saved, (List{"LastVoltDmp"}));

  // Closing from minimised saves the normal placement, then the last choices, then the toolbars.
  window->showMinimized();
  started.settings.saved.clear();
  QVERIFY(window->close());
  QCOMPARE(started.settings.saved,
           (List{"frmMain\\Top", "frmMain\\Left", "frmMain\\Height", "frmMain\\Width", "frmMain\\WinState",
                 "Width", "Height", "WinState", "LastVoltDmp", "LastRdsDir", "Layout\\frmMain"}));
  QCOMPARE(started.install.settings.GetAppSetting("WinState", "", "frmMain"), std::string("0"));
  QCOMPARE(started.install.settings.GetAppSetting("LastRdsDir", ""), std::string("C:\\Projektmallar\\"));

  // The saved size is never below the 5500-twip minimum.
  const auto width = started.install.settings.GetAppSetting("Width", "", "frmMain");
  QVERIFY(std::stof(width) >= 5500.0f);
}

void MainWindowTest::firstStartIsCentredWithEveryButtonAndTwentyRowsAndARememberedPlaceStaysOnTheScreen() {
  StartedWindow started;
  started.window.reset();  // not closed: nothing of it is remembered
  QVERIFY(started.install.settings.GetAppSetting("Top", "", "frmMain").empty());
  started.startSize = QSize();
  started.Reopen();
  auto* window = started.window.get();

  // Every toolbar button is on its toolbar, none in an overflow menu.
  QStringList shown;
  for (QToolBar* bar : window->findChildren<QToolBar*>()) {
    for (QAction* action : bar->actions()) {
      QWidget* button = bar->widgetForAction(action);
      if (!button || !action->isVisible()) continue;
      QVERIFY2(button->isVisible() && bar->rect().contains(button->geometry()),
               qPrintable(action->text() + QStringLiteral(" is not shown")));
      shown << action->text();
    }
  }
  QVERIFY(shown.contains(QStringLiteral("&Nästa")));
  QVERIFY(shown.contains(window->Command(sw::gui::kCommandGenerate)->text()));
  // Twenty rows of the grid show.
  auto* grid = started.Grid();
  QVERIFY2(grid->viewport()->height() >= 20 * grid->verticalHeader()->defaultSectionSize(),
           qPrintable(QString::number(grid->viewport()->height())));
  // Centred on the screen, and never below the minimum of 5500 twips.
  const QRect area = window->screen()->availableGeometry();
  const QRect frame = window->frameGeometry();
  QVERIFY2(area.contains(frame), Where(frame));
  const QPoint offCentre = window->frameGeometry().center() - area.center();
  QVERIFY2(std::abs(offCentre.x()) <= 16 && std::abs(offCentre.y()) <= 16,
           qPrintable(QStringLiteral("%1,%2").arg(offCentre.x()).arg(offCentre.y())));
  const double twips = 1440.0 / window->logicalDpiX();
  QVERIFY(window->width() >= qRound(5500 / twips) && window->height() >= qRound(5500 / twips));

  // Remembered on a wider screen (or at another scale factor): 1200 pixels from the left, 1500 wide.
  started.window.reset();
  started.install.settings.SaveAppSetting("Top", "3000", "frmMain");
  started.install.settings.SaveAppSetting("Left", "18000", "frmMain");
  started.install.settings.SaveAppSetting("Width", "22500", "frmMain");
  started.install.settings.SaveAppSetting("Height", "12000", "frmMain");
  started.Reopen();
  window = started.window.get();
  QCOMPARE(area.size(), QSize(1600, 1000));
  // Wholly on the screen, as large as was remembered where that fits.
  QVERIFY2(area.adjusted(0, 0, 16, 16).contains(window->frameGeometry()), Where(window->frameGeometry()));
  QCOMPARE(window->width(), 1500);
  QCOMPARE(window->height(), 800);
}

void MainWindowTest::popupEntriesFollowTheRowUnderThePointer() {
  // Which entries are enabled where is the preview's rule (tests/preview); here the popup shows them for
  // the row under the pointer, and over the headings with nothing enabled.
  StartedWindow started;
  auto* grid = started.Grid();
  auto head = RightClick(started, started.RowPoint(1));
  QCOMPARE(grid->CurrentTableRow(), 1);  // the row under the pointer became current
  QCOMPARE(head.size(), 3);
  QCOMPARE(head[0].name, QStringLiteral("cmd951"));
  QCOMPARE(head[0].caption, QStringLiteral("&Radera placering +A1 Panel"));
  QVERIFY(head[0].enabled && !head[1].enabled && !head[2].enabled);
  auto ordinary = RightClick(started, started.RowPoint(3));
  QCOMPARE(grid->CurrentTableRow(), 3);
  QVERIFY(!ordinary[0].enabled && ordinary[1].enabled && !ordinary[2].enabled);

  QHeaderView* header = grid->horizontalHeader();
  const QPoint overHeading(header->sectionViewportPosition(1) + 5, header->height() / 2);
  const auto heading = RightClick(started, overHeading, {}, header->viewport());
  QCOMPARE(heading.size(), 3);
  QVERIFY(!heading[0].enabled && !heading[1].enabled && !heading[2].enabled);
}

// The grid's model is watched for its invariants through every kind of change.
void MainWindowTest::undoAndRedoFollowEveryEdit() {
  StartedWindow started;
  auto* window = started.window.get();
  auto* model = started.Grid()->model();
  QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
  QAction* undo = window->Command(sw::gui::kCommandUndo);
  QAction* redo = window->Command(sw::gui::kCommandRedo);
  QVERIFY(!undo->isEnabled());
  QVERIFY(!redo->isEnabled());

  RightClick(started, started.RowPoint(3), QStringLiteral("cmd952"));
  QCOMPARE(model->rowCount(), 7);
  QVERIFY(undo->isEnabled());

  window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(window));
  auto* grid = started.Grid();
  grid->setFocus();
  QTRY_VERIFY(grid->hasFocus());
  QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
  QCOMPARE(model->rowCount(), 6);
  QCOMPARE(Background(model, 4, 0), kYellow);
  QCOMPARE(StatusText(started), QStringLiteral("Rader: 6   Placeringar: 1   Sidor: 2"));
  QVERIFY(!undo->isEnabled());
  QVERIFY(redo->isEnabled());
  QTest::keyClick(grid, Qt::Key_Y, Qt::ControlModifier);
  QCOMPARE(model->rowCount(), 7);
  QCOMPARE(Background(model, 3, 0), kGreen);
  QVERIFY(!redo->isEnabled());

  // The Delete key deletes the placement of the current row (only a head row has one).
  grid->setCurrentIndex(model->index(0, 1));
  QTest::keyClick(grid, Qt::Key_Delete);
  QCOMPARE(model->rowCount(), 0);
  QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
  QCOMPARE(model->rowCount(), 7);
  QCOMPARE(Column0(model, 1), QStringLiteral("+A1 Panel"));

  // A double-click is a step like the popup's.
  DoubleClick(started, started.RowPoint(3));  // removes the manual break
  QCOMPARE(model->rowCount(), 6);
  undo->trigger();
  QCOMPARE(model->rowCount(), 7);
  QCOMPARE(Background(model, 3, 0), kGreen);
  window->Command(sw::gui::kCommandRefresh)->trigger();
  QCOMPARE(model->rowCount(), 6);
}

void MainWindowTest::droppedAndRecentDumpsLoad() {
  StartedWindow started;
  auto* window = started.window.get();
  auto* model = started.Grid()->model();
  auto* recent = window->findChild<QMenu*>(QStringLiteral("mnuSenaste"));
  QVERIFY(!recent->isEnabled());

  // A dump dragged from the file manager onto the window.
#ifdef _WIN32
  // The test's drive C: is a folder of its own: a file dropped from it is named on that drive.
  const QString dropped = QStringLiteral("C:\\VOLTARIS\\Rapport\\volt_report.txt");
#else
  const QString dropped =
      QString::fromStdString(started.install.Host("VOLTARIS/Rapport/volt_report.txt").string());
#endif
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QDir::fromNativeSeparators(dropped))});
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
  QCoreApplication::sendEvent(window, &enter);
  QVERIFY(enter.isAccepted());
  QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
  QCoreApplication::sendEvent(window, &drop);
  QCOMPARE(Column0(model, 1), QStringLiteral("+B1 Rapport"));
  QVERIFY(recent->isEnabled());

  // Anything but one file is refused.
  QMimeData text;
  text.setText(QStringLiteral("volt_report.txt"));
  QDragEnterEvent refused(QPoint(50, 50), Qt::CopyAction, &text, Qt::LeftButton, {});
  QCoreApplication::sendEvent(window, &refused);
  QVERIFY(!refused.isAccepted());

  const std::string chosen = "C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt";
  started.install.dialogs.fileAnswers = {chosen};
  window->Command(sw::gui::kCommandChooseTextFile)->trigger();
  QCOMPARE(Column0(model, 1), QStringLiteral("+A1 Panel"));
  QStringList entries;
  for (QAction* entry : recent->actions())
    entries << entry->objectName() + QStringLiteral(" ") + entry->text();
  QCOMPARE(entries,
           (QStringList{"recentDump0 &1 " + QString::fromStdString(chosen), "recentDump1 &2 " + dropped}));

  recent->actions().at(1)->trigger();
  QCOMPARE(Column0(model, 1), QStringLiteral("+B1 Rapport"));
}

void MainWindowTest::fieldBoxesCommitAndEnterMovesOn() {
  StartedWindow started;
  auto* window = started.window.get();
  // The field view: Enter moves to the next enabled box, or back to box 0.
  window->Command(sw::gui::kCommandNext)->trigger();
  QVERIFY(window->findChild<QWidget*>(QStringLiteral("fraFields"))->isVisible());
  QVERIFY(!window->findChild<QWidget*>(QStringLiteral("fraFiles"))->isVisible());
  QVERIFY(!window->Command(sw::gui::kCommandNext)->isEnabled());
  QVERIFY(window->Command(sw::gui::kCommandPrevious)->isEnabled());
  auto* box0 = window->findChild<QLineEdit*>(QStringLiteral("txtField0"));
  auto* box1 = window->findChild<QLineEdit*>(QStringLiteral("txtField1"));
  box0->setFocus();
  QTRY_VERIFY(box0->hasFocus());
  QTest::keyClicks(box0, QStringLiteral("Kraftverket"));
  QTest::keyClick(box0, Qt::Key_Return);
  QTRY_VERIFY(box1->hasFocus());
  QTRY_COMPARE(box1->selectedText(), QStringLiteral("AB"));  // the whole text is selected on focus
  QTest::keyClicks(box1, QStringLiteral("."));
  QTest::keyClick(box1, Qt::Key_Return);  // box 2 is disabled: back to box 0
  QTRY_VERIFY(box0->hasFocus());
  const QString today = QString::fromStdString(sw::templates::TodayShortDate());
  QCOMPARE(box1->text(), today);
  QCOMPARE(window->Session().Fields().entries[0].text, std::string("Kraftverket"));
  QCOMPARE(window->Session().Fields().entries[1].text, today.toStdString());

  // "." also becomes the date when the box loses the focus.
  QTest::keyClicks(box0, QStringLiteral("."));
  box1->setFocus();
  QTRY_COMPARE(box0->text(), today);
  QCOMPARE(window->Session().Fields().entries[0].text, today.toStdString());

  // Which steps the typing makes is the session's (tests/session); undone, the box shows the text again.
  window->Command(sw::gui::kCommandUndo)->trigger();
  QCOMPARE(box0->text(), QStringLiteral("Kraftverket"));
}

void MainWindowTest::sheetNumberBoxTakesOnlyWhatItsFilterPasses() {
  StartedWindow started;
  auto* window = started.window.get();
  auto* sheetNo = window->findChild<QComboBox*>(QStringLiteral("cboSheetNo"));
  sheetNo->setFocus();
  QTRY_VERIFY(sheetNo->hasFocus());

  // Which keys and texts pass is the preview's rule (tests/preview); here the box applies it to what is
  // typed and pasted.
  QTest::keyClick(sheetNo, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(sheetNo, QStringLiteral("12a3"));
  QCOMPARE(sheetNo->currentText(), QStringLiteral("123"));
  // Alt with a letter that is no access key of the window types nothing either.
  QTest::keyClick(sheetNo, Qt::Key_X, Qt::AltModifier);
  QCOMPARE(sheetNo->currentText(), QStringLiteral("123"));

  // Pasted text goes in only when all of it could have been typed.
  QGuiApplication::clipboard()->setText(QStringLiteral("4x"));
  QTest::keyClick(sheetNo, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(sheetNo->currentText(), QStringLiteral("123"));
  QGuiApplication::clipboard()->setText(QStringLiteral("45"));
  QTest::keyClick(sheetNo, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(sheetNo->currentText(), QStringLiteral("12345"));
  // What the box holds is what generation numbers from (tests/generate).
  QCOMPARE(window->Session().SheetNumbers().text, std::string("12345"));
}

// Generation and the dump written as a workbook run long over a dump of 400 rows: the window shows what
// they do and takes no input meanwhile, generation stops on "Avbryt" and its workbook is shown.
void MainWindowTest::generationAndTheDumpWorkbookShowTheirProgressAndResult() {
  // Every step shown, so that the probe below sees each page however fast the run is.
  sw::gui::SetStepInterval(0);
  StartedWindow started([](sw::testing::FakeInstallation& install) {
    WithExampleTemplate(install);
    std::string dump = "%+A1 Panel%\r\n";
    for (int row = 1; row <= 400; ++row) dump += "\tX1\t" + std::to_string(row) + "\tPump\r\n";
    install.Write("Temp/VOLTARIS/VOLTARIS ic/volt_report.txt", dump);
    install.Write("Ut/Panel.xlsx", "det förra resultatet");
  });
  auto* window = started.window.get();
  auto& dialogs = started.install.dialogs;
  auto* bar = window->findChild<QProgressBar*>(QStringLiteral("prgLoad"));
  auto* cancel = window->findChild<QPushButton*>(QStringLiteral("btnCancelGeneration"));
  QCOMPARE(cancel->text(), QString::fromUtf8("Avbryt"));
  QVERIFY(cancel->isHidden());
  const auto target = started.install.Host("Ut/Panel.xlsx");

  // What the window shows whenever it gets to handle its events during a run; `stop` is what the
  // user does once the bar has moved past the second page.
  QStringList statuses;
  bool busyBarWhileSaving = false;
  bool hourglassAndBarMoving = false;
  bool editorReached = false;
  std::function<void()> stop;
  QTimer probe;
  probe.setInterval(0);
  QObject::connect(&probe, &QTimer::timeout, [&] {
    const QString status = window->statusBar()->currentMessage();
    if (statuses.isEmpty() || statuses.back() != status) statuses.push_back(status);
    // The save cannot be stopped half-way: the button is greyed meanwhile.
    if (status == QString::fromUtf8("Sparar arbetsboken …") && bar->maximum() == 0 && !cancel->isEnabled())
      busyBarWhileSaving = true;
    const QCursor* cursor = QGuiApplication::overrideCursor();
    if (cursor && cursor->shape() == Qt::WaitCursor && !bar->isHidden() && bar->value() > 0 &&
        bar->value() < bar->maximum() && !window->menuBar()->isEnabled())
      hourglassAndBarMoving = true;
    if (stop && !cancel->isHidden() && bar->value() >= 2) std::exchange(stop, {})();
  });
  probe.start();

  // What the save dialog asks, and that cancelling it writes nothing, is generation's (tests/generate).
  window->Command(sw::gui::kCommandGenerate)->trigger();
  QCOMPARE(dialogs.fileRequests.size(), std::size_t{1});
  QVERIFY(started.opened.empty());

  // A run to its end tells the pages, then the save; the workbook is opened and its name shown with the
  // platform's separators.
  dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel2.xlsx"));
  window->Command(sw::gui::kCommandGenerate)->trigger();
  QVERIFY2(dialogs.messages.empty(), dialogs.messages.empty() ? "" : dialogs.messages[0].text.c_str());
  QVERIFY(statuses.contains(QString::fromUtf8("Skapar sidor … 2 av ") +
                            QString::number(*window->Session().PagesOfGeneration())));
  QVERIFY(busyBarWhileSaving && hourglassAndBarMoving);
  QVERIFY(cancel->isHidden() && cancel->isEnabled());
  const std::string shown =
      std::filesystem::path(started.install.Host("Ut/Panel2.xlsx")).make_preferred().string();
  QCOMPARE(started.opened, (List{shown}));
  QVERIFY(window->statusBar()->currentMessage().contains(QString::fromStdString(shown)));
  // Where no program opens it, the user is told so.
  started.workbookOpens = false;
  dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel2.xlsx"));
  window->Command(sw::gui::kCommandGenerate)->trigger();
  QCOMPARE(dialogs.messages.size(), std::size_t{1});
  QCOMPARE(dialogs.messages[0].text, "Det gick inte att starta något program som kan öppna\r" + shown);

  // Clicking "Avbryt" in the middle of a run: nothing is written over the earlier result, the user is
  // told so once (in generation's words, tests/generate), and the window is ready again. Esc does the
  // same; so does closing the window, which stays open.
  const std::function<void()> ways[] = {
      [&] { QTest::mouseClick(cancel, Qt::LeftButton); },
      [&] { QTest::keyClick(window->findChild<QComboBox*>(QStringLiteral("cboSheetNo")), Qt::Key_Escape); },
      [&] {
        // Typing into the window while it runs does nothing.
        QTest::keyClicks(window->findChild<QComboBox*>(QStringLiteral("cboSheetNo")), QStringLiteral("9"));
        editorReached =
            window->findChild<QComboBox*>(QStringLiteral("cboSheetNo"))->currentText().contains('9');
        window->close();
      },
  };
  for (const auto& way : ways) {
    dialogs.messages.clear();
    started.opened.clear();
    stop = way;
    dialogs.fileAnswers.push_back(std::string("C:\\Ut\\Panel.xlsx"));
    window->Command(sw::gui::kCommandGenerate)->trigger();
    QVERIFY(!stop);
    QCOMPARE(*sw::base::ReadWholeFile(target), std::string("det förra resultatet"));
    QCOMPARE(dialogs.messages.size(), std::size_t{1});
    QCOMPARE(dialogs.messages[0].text,
             std::string("Genereringen avbröts. C:\\Ut\\Panel.xlsx är som före körningen."));
    QVERIFY(started.opened.empty() && cancel->isHidden() && window->menuBar()->isEnabled());
    QVERIFY(window->isVisible());
    QVERIFY(!editorReached);
  }

#ifndef _WIN32  // there the dump goes to Excel, which imports it itself
  // The dump written as a workbook, to a folder of its own under the temporary folder (the
  // installation's here); no program is there to open it, which the user is told.
  const QByteArray systemTemp = qgetenv("TMPDIR");
  qputenv("TMPDIR", QByteArray::fromStdString(started.install.temp.path().string()));
  dialogs.messages.clear();
  hourglassAndBarMoving = false;
  window->Command(sw::gui::kCommandEditDump)->trigger();
  systemTemp.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", systemTemp);
  QVERIFY(hourglassAndBarMoving);
  QCOMPARE(dialogs.messages.size(), std::size_t{1});
  const std::string told = dialogs.messages[0].text;
  QVERIFY2(told.substr(told.find('\r') + 1).starts_with(started.install.temp.path().string()), told.c_str());
#endif
  probe.stop();
  QVERIFY(!QGuiApplication::overrideCursor());
  QVERIFY(bar->isHidden());
  QVERIFY(window->menuBar()->isEnabled());
}

void MainWindowTest::viewSwitchDisablesGenerateForAnIniToEdit() {
  StartedWindow started([](sw::testing::FakeInstallation& install) {
    install.Write("Projektmallar/PANEL.ini", "[Tabs]\r\nTemplate=Sida\r\nCommon=Blad1\r\n");  // no [Common]
  });
  auto* window = started.window.get();
  window->Command(sw::gui::kCommandNext)->trigger();
  QVERIFY(!window->Command(sw::gui::kCommandGenerate)->isEnabled());
  window->Command(sw::gui::kCommandPrevious)->trigger();
  QVERIFY(!window->Command(sw::gui::kCommandGenerate)->isEnabled());
}

QTEST_MAIN(MainWindowTest)
#include "main_window_test.moc"
