// Moving about the preview and keeping it current, as the user does it in the window: finding a
// placement, going to a page, the dump written again on disk, the start that finds nothing, the
// columns laid out alike at every load with the names frozen at the left.
#include <QApplication>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

#include "gui/report_table_model.h"
#include "session/preview_navigation.h"
#include "started_window.h"

using sw::testing::FakeInstallation;
using sw::testing::StartedWindow;

namespace {

const char* const kDump = "Temp/VOLTARIS/VOLTARIS ic/volt_report.txt";

// `count` placements of three rows, named "+P<n> Pump" and "+P<n> Fläkt" by turns (written as the CAD
// system writes, in ANSI); every row has `fields` cells of some width.
std::string Placements(int count, int fields = 3) {
  std::string dump = "RDS_DEF\tPANEL\tPanel\r\n";
  for (int i = 1; i <= count; ++i) {
    dump += "%+P" + std::to_string(i) + (i % 2 ? " Pump" : " Fl\xE4kt") + "%\r\n";
    for (int row = 1; row <= 3; ++row) {
      dump += "\tX" + std::to_string(i);
      for (int field = 1; field < fields; ++field)
        dump +=
            "\tKabel " + std::to_string(i) + "." + std::to_string(row) + " f\xE4lt " + std::to_string(field);
      dump += "\r\n";
    }
  }
  return dump;
}

QString Column0(StartedWindow& started, int tableRow) {
  return started.Grid()->model()->index(tableRow - 1, 0).data().toString();
}

// Answers the input dialog named `name`, once it is open, as the user does: the text typed over what
// it offers, then Enter; `cancel` presses Escape instead. `seen` tells whether it came.
void AnswerInput(const QString& name, const QString& text, bool* seen, bool cancel = false, int tries = 500) {
  *seen = false;
  QTimer::singleShot(10, [=] {
    auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
    if (!dialog || dialog->objectName() != name || !dialog->isVisible()) {
      if (tries > 0) AnswerInput(name, text, seen, cancel, tries - 1);
      return;
    }
    *seen = true;
    auto* line = dialog->findChild<QLineEdit*>();
    if (cancel) {
      QTest::keyClick(line, Qt::Key_Escape);
      return;
    }
    line->selectAll();
    for (const QChar ch : text) {
      // Letters beyond ASCII come as the Swedish keyboard gives them: their own key and text.
      if (ch.unicode() < 128) {
        QTest::keyClick(line, static_cast<char>(ch.unicode()));
      } else {
        QTest::sendKeyEvent(QTest::Click, line, static_cast<Qt::Key>(ch.toUpper().unicode()), QString(ch),
                            Qt::NoModifier);
      }
    }
    QTest::keyClick(line, Qt::Key_Return);
  });
}

// Presses `key` with Ctrl on the grid, the window active as the user has it.
void PressOnGrid(StartedWindow& started, Qt::Key key) {
  started.window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(started.window.get()));
  started.Grid()->setFocus();
  QTest::keyClick(started.Grid(), key, Qt::ControlModifier);
}

// The row is current and fully in the grid's view.
bool ShownAndCurrent(StartedWindow& started, int tableRow) {
  auto* grid = started.Grid();
  if (grid->CurrentTableRow() != tableRow) return false;
  const QRect cell = grid->visualRect(grid->model()->index(tableRow - 1, 0));
  return grid->viewport()->rect().contains(cell);
}

std::vector<std::string> MessageTexts(StartedWindow& started) {
  std::vector<std::string> texts;
  for (const auto& message : started.install.dialogs.messages) texts.push_back(message.text);
  return texts;
}

std::vector<int> ColumnWidths(StartedWindow& started) {
  std::vector<int> widths;
  auto* grid = started.Grid();
  for (int c = 0; c < grid->model()->columnCount(); ++c) widths.push_back(grid->columnWidth(c));
  return widths;
}

}  // namespace

class NavigationTest : public QObject {
  Q_OBJECT

 private slots:
  void findAndGoToPageBringTheRowIntoViewAndTellWhatIsNotThere();
  void dumpWrittenAgainIsOfferedOnceAndReloadedOnYes();
  void nothingFoundSaysWhereItLookedAndOffersTheDumpPicker();
  void columnsAreLaidOutAlikeAtEveryLoadAndTheNamesStayInView();
  void narrowColumnsFillTheGridUntilTheUserResizesOne();
};

// Which name is next, in any case and starting over past the last, and which pages there are, is the
// session's rule (tests/session); here Ctrl+F and Ctrl+G ask, what is typed reaches the rule from the
// current row, and the row found comes into view.
void NavigationTest::findAndGoToPageBringTheRowIntoViewAndTellWhatIsNotThere() {
  StartedWindow started([](FakeInstallation& install) {
    install.Write(kDump, Placements(60));
    install.settings.SaveAppSetting("ShowPageBreaks", "1");
  });
  QCOMPARE(Column0(started, 1), QStringLiteral("+P1 Pump"));

  // Ctrl+F, "p50 fläkt": the name far below the rows on screen comes into view selected.
  bool seen = false;
  AnswerInput(QStringLiteral("dlgSokPlacering"), QString::fromUtf8("p50 fläkt"), &seen);
  PressOnGrid(started, Qt::Key_F);
  QVERIFY(seen);
  const int p50 = started.Grid()->CurrentTableRow();
  QCOMPARE(Column0(started, p50), QString::fromUtf8("+P50 Fläkt"));
  QVERIFY(ShownAndCurrent(started, p50));
  QVERIFY(started.Grid()->verticalScrollBar()->value() > 0);
  // Searched again from there, not from the top.
  AnswerInput(QStringLiteral("dlgSokPlacering"), QString::fromUtf8("FLÄKT"), &seen);
  PressOnGrid(started, Qt::Key_F);
  QCOMPARE(Column0(started, started.Grid()->CurrentTableRow()), QString::fromUtf8("+P52 Fläkt"));
  QVERIFY(MessageTexts(started).empty());

  // Nothing of that name: told, and the row stays.
  const int p52 = started.Grid()->CurrentTableRow();
  AnswerInput(QStringLiteral("dlgSokPlacering"), QStringLiteral("Motor"), &seen);
  PressOnGrid(started, Qt::Key_F);
  QCOMPARE(MessageTexts(started),
           std::vector<std::string>{"Hittar ingen placering som innehåller \"Motor\"."});
  QCOMPARE(started.Grid()->CurrentTableRow(), p52);

  // Cancelled: nothing happens.
  AnswerInput(QStringLiteral("dlgSokPlacering"), QString(), &seen, true);
  PressOnGrid(started, Qt::Key_F);
  QVERIFY(seen);
  QCOMPARE(started.install.dialogs.messages.size(), std::size_t{1});

  // Ctrl+G, "9": the page's first row.
  const auto firsts = sw::session::PageFirstRows(started.window->Session().Table());
  QVERIFY(firsts.size() > 10);  // three rows a page and a page for every placement
  AnswerInput(QStringLiteral("dlgGaTillSida"), QStringLiteral("9"), &seen);
  PressOnGrid(started, Qt::Key_G);
  QVERIFY(seen);
  QVERIFY(ShownAndCurrent(started, firsts[8]));

  // What is no number is no page: told the range, and the row stays.
  AnswerInput(QStringLiteral("dlgGaTillSida"), QStringLiteral("tre"), &seen);
  PressOnGrid(started, Qt::Key_G);
  QCOMPARE(MessageTexts(started).back(), "Ange en sida mellan 1 och " + std::to_string(firsts.size()) + ".");
  QCOMPARE(started.Grid()->CurrentTableRow(), firsts[8]);
}

void NavigationTest::dumpWrittenAgainIsOfferedOnceAndReloadedOnYes() {
  StartedWindow started;
  auto& dialogs = started.install.dialogs;
  // An edit the user would lose: the placement deleted.
  started.window->Session().DeletePlacement(1);
  started.window->ShowSession();
  QVERIFY(started.window->Command(sw::gui::kCommandUndo)->isEnabled());
  const int rowsEdited = started.Grid()->model()->rowCount();

  // Written again: the status bar says so and the question comes; "Nej" keeps the edits.
  dialogs.answers.push_back(sw::base::MessageAnswer::kNo);
  started.install.Write(kDump, "%+A1 Panel%\r\n\tX1\t1\tPump\r\n%+B7 Ny%\r\n\tX2\t1\tMotor\r\n");
  QTRY_COMPARE_WITH_TIMEOUT(dialogs.messages.size(), std::size_t{1}, 5000);
  QCOMPARE(dialogs.messages.back().title, std::string("Rapportfilen har ändrats"));
  QCOMPARE(QString::fromStdString(dialogs.messages.back().text),
           QString::fromUtf8("Rapportfilen C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt har ändrats på "
                             "disken.\r\nVill du läsa in den igen? Ändringarna i förhandsgranskningen går då "
                             "förlorade."));
  QCOMPARE(dialogs.messages.back().buttons, sw::base::MessageButtons::kYesNo);
  QCOMPARE(started.window->statusBar()->currentMessage(),
           QString::fromUtf8("Rapportfilen har ändrats på disken."));
  QCOMPARE(started.Grid()->model()->rowCount(), rowsEdited);
  QVERIFY(started.window->Command(sw::gui::kCommandUndo)->isEnabled());
  // Not asked again for the same file.
  QTest::qWait(2500);
  QCOMPARE(dialogs.messages.size(), std::size_t{1});

  // Written once more: asked again, and "Ja" loads it with a new history.
  dialogs.answers.push_back(sw::base::MessageAnswer::kYes);
  started.install.Write(kDump,
                        "%+A1 Panel%\r\n\tX1\t1\tPump\r\n%+B7 Ny%\r\n\tX2\t1\tMotor\r\n\tX2\t2\tLampa\r\n");
  QTRY_COMPARE_WITH_TIMEOUT(dialogs.messages.size(), std::size_t{2}, 5000);
  QTRY_COMPARE(Column0(started, 3), QStringLiteral("+B7 Ny"));
  QVERIFY(!started.window->Command(sw::gui::kCommandUndo)->isEnabled());
  QCOMPARE(started.window->statusBar()->currentMessage(), QString::fromUtf8("Rapportfilen är inläst igen."));
}

void NavigationTest::nothingFoundSaysWhereItLookedAndOffersTheDumpPicker() {
  StartedWindow started({}, false);
  auto* window = started.window.get();
  auto* panel = window->findChild<QWidget*>(QStringLiteral("pnlNothingFound"));
  QVERIFY(panel->isVisible());
  QVERIFY(!started.Grid()->isVisible());
  const QString said = window->findChild<QLabel*>(QStringLiteral("lblNothingFound"))->text();
  // What the lines say is the session's (tests/session); here they reach the panel.
  QVERIFY(said.startsWith(QString::fromUtf8(
      "Hittade ingen VOLTARIS-installation: ingen katalog för rapportmallar och ingen rapportfil.")));
  // What cannot run is greyed rather than answering that no template is chosen.
  for (int id : {sw::gui::kCommandEditTemplate, sw::gui::kCommandEditIni, sw::gui::kCommandGenerate,
                 sw::gui::kCommandEditDump, sw::gui::kCommandFindPlacement, sw::gui::kCommandGoToPage})
    QVERIFY2(!window->Command(id)->isEnabled(), qPrintable(window->Command(id)->objectName()));
  // Run from elsewhere all the same, the command still tells why it does nothing.
  window->Dispatcher().Dispatch(sw::gui::kCommandEditTemplate);
  QCOMPARE(MessageTexts(started), std::vector<std::string>{"Ingen Excelmall vald."});

  // The button is "Välj textfil...": the dump chosen takes the empty text's place.
  started.install.Write("Dumpar/egen.txt", Placements(2));
  started.install.dialogs.fileAnswers = {std::string("C:\\Dumpar\\egen.txt")};
  auto* choose = panel->findChild<QPushButton*>(QStringLiteral("btnChooseTextFile"));
  QCOMPARE(choose->text(), QString::fromUtf8("Välj textfil..."));
  QTest::mouseClick(choose, Qt::LeftButton);
  QTRY_VERIFY(started.Grid()->isVisible());
  QVERIFY(!panel->isVisible());
  QCOMPARE(Column0(started, 1), QStringLiteral("+P1 Pump"));
  QVERIFY(window->Command(sw::gui::kCommandFindPlacement)->isEnabled());
  QVERIFY(!window->Command(sw::gui::kCommandEditTemplate)->isEnabled());  // still no template
}

void NavigationTest::columnsAreLaidOutAlikeAtEveryLoadAndTheNamesStayInView() {
  StartedWindow started([](FakeInstallation& install) { install.Write(kDump, Placements(40, 12)); });
  auto* grid = started.Grid();
  QTest::qWait(50);
  const auto atStart = ColumnWidths(started);

  // The same dump chosen by "Välj textfil...": the same widths.
  started.install.dialogs.fileAnswers = {std::string("C:\\Temp\\VOLTARIS\\VOLTARIS ic\\volt_report.txt")};
  started.window->Command(sw::gui::kCommandChooseTextFile)->trigger();
  QTest::qWait(50);
  QCOMPARE(ColumnWidths(started), atStart);
  // And again at the next start, at the same window size.
  started.Reopen();
  QTest::qWait(50);
  QCOMPARE(ColumnWidths(started), atStart);

  // Scrolled sideways to the end, the names stay at the left, row for row with the grid.
  grid = started.Grid();
  auto* frozen = grid->findChild<QTableView*>(QStringLiteral("fgFrozen"));
  QVERIFY(frozen);
  QVERIFY(!frozen->isVisible());
  QVERIFY(grid->horizontalScrollBar()->maximum() > 0);
  grid->horizontalScrollBar()->setValue(grid->horizontalScrollBar()->maximum());
  QTRY_VERIFY(frozen->isVisible());
  QVERIFY(grid->visualRect(grid->model()->index(0, 0)).right() < 0);  // column 0 itself is out of view
  QCOMPARE(frozen->columnWidth(0), grid->columnWidth(0));
  QCOMPARE(frozen->geometry().left(), grid->frameWidth());
  grid->verticalScrollBar()->setValue(30);
  const QModelIndex row = grid->model()->index(35, 0);
  QCOMPARE(frozen->visualRect(row).top(), grid->visualRect(grid->model()->index(35, 1)).top());
  QCOMPARE(frozen->indexAt(QPoint(5, frozen->visualRect(row).center().y())).data().toString(),
           row.data().toString());
  // A click on a name there makes its row current in the grid.
  QTest::mouseClick(frozen->viewport(), Qt::LeftButton, {}, frozen->visualRect(row).center());
  QCOMPARE(grid->CurrentTableRow(), 36);
  QVERIFY(grid->hasFocus());
  // A double-click on a name there acts as on the grid: the placement goes.
  const int placements = started.window->Session().Summary().placements;
  int head = 0;
  for (int r = grid->verticalScrollBar()->value(); r < grid->model()->rowCount() && !head; ++r)
    if (grid->model()->index(r, 0).data().toString().startsWith(QStringLiteral("+P"))) head = r;
  QVERIFY(head > 0);
  const QPoint name = frozen->visualRect(grid->model()->index(head, 0)).center();
  QTest::mouseClick(frozen->viewport(), Qt::LeftButton, {}, name);
  QTest::mouseDClick(frozen->viewport(), Qt::LeftButton, {}, name);
  QCOMPARE(started.window->Session().Summary().placements, placements - 1);
  // Back at the left edge the grid's own column 0 shows again.
  grid->horizontalScrollBar()->setValue(0);
  QTRY_VERIFY(!frozen->isVisible());
}

void NavigationTest::narrowColumnsFillTheGridUntilTheUserResizesOne() {
  StartedWindow started([](FakeInstallation& install) { install.Write(kDump, Placements(5, 3)); });
  auto* grid = started.Grid();
  QTest::qWait(50);
  const auto filled = [grid] {
    int total = 0;
    for (int c = 0; c < grid->model()->columnCount(); ++c) total += grid->columnWidth(c);
    return total;
  };
  const int view = grid->width() - 2 * grid->frameWidth() - grid->verticalScrollBar()->sizeHint().width();
  QCOMPARE(filled(), view);
  QCOMPARE(grid->horizontalScrollBar()->maximum(), 0);
  // A wider window: fitted again, still filled.
  started.window->resize(started.window->width() + 200, started.window->height());
  QTRY_COMPARE(grid->width() - 2 * grid->frameWidth() - grid->verticalScrollBar()->sizeHint().width(),
               view + 200);
  QCOMPARE(filled(), view + 200);
  // Once the user has set a width by hand, the window's size leaves the columns alone.
  grid->horizontalHeader()->resizeSection(1, 150);
  const auto chosen = ColumnWidths(started);
  started.window->resize(started.window->width() - 100, started.window->height());
  QTest::qWait(50);
  QCOMPARE(ColumnWidths(started), chosen);
  // The next load fits them anew.
  started.window->Command(sw::gui::kCommandRefresh)->trigger();
  QCOMPARE(filled(), grid->width() - 2 * grid->frameWidth() - grid->verticalScrollBar()->sizeHint().width());
}

QTEST_MAIN(NavigationTest)
#include "navigation_test.moc"
