// The options dialog, the single-sheet warning, the about box and the colouring by name prefix, driven
// offscreen with the keyboard and the mouse.
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <limits>

#include "fake_installation.h"
#include "gui/about_box.h"
#include "gui/control_colouring.h"
#include "gui/options_dialog.h"
#include "gui/qt_dialogs.h"
#include "gui/qt_translations.h"
#include "gui/warning_dialog.h"
#include "started_window.h"

using sw::testing::StartedWindow;
using List = std::vector<std::string>;

namespace {

const QColor kYellow(0xFF, 0xFF, 0xC0);

int YellowRows(const QAbstractItemModel* model) {
  int marks = 0;
  for (int row = 0; row < model->rowCount(); ++row) {
    if (model->index(row, 0).data(Qt::BackgroundRole).value<QBrush>().color() == kYellow) ++marks;
  }
  return marks;
}

template <typename T>
T* Child(QWidget* parent, const char* name) {
  T* child = parent->findChild<T*>(QString::fromUtf8(name));
  if (!child) qFatal("no child %s", name);
  return child;
}

// Runs `script` on the modal dialog as soon as the event loop of its exec() runs; a run that repaints
// its progress first lets the events through before the dialog opens.
void WhenModal(const std::function<void(QDialog*)>& script, int tries = 500) {
  QTimer::singleShot(tries == 500 ? 0 : 10, [script, tries] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog) return script(dialog);
    if (tries == 0) qFatal("no modal dialog");
    WhenModal(script, tries - 1);
  });
}

// Presses the space bar on a box, as a user tabbing through the dialog would.
void Tick(QCheckBox* box) {
  box->setFocus(Qt::TabFocusReason);
  QTest::keyClick(box, Qt::Key_Space);
}

List SavedSince(const sw::testing::RecordingSettings& settings, std::size_t from) {
  return List(settings.saved.begin() + static_cast<std::ptrdiff_t>(from), settings.saved.end());
}

class CountingTool final : public sw::base::SystemInformationTool {
 public:
  explicit CountingTool(bool available) : available_(available) {}
  bool Available() const override { return available_; }
  bool Start() override {
    ++started;
    return true;
  }
  int started = 0;

 private:
  bool available_;
};

bool KeepsItsColours(QWidget* widget) {
  return !widget->autoFillBackground() && !widget->testAttribute(Qt::WA_SetPalette);
}

bool HasColour(QWidget* widget, const QColor& colour) {
  return widget->autoFillBackground() && widget->palette().color(widget->backgroundRole()) == colour;
}

}  // namespace

class DialogsTest : public QObject {
  Q_OBJECT

 private slots:
  void optionsOpenCentredOverTheWindowWithTheSettingsOnTheirTabs();
  void optionsActAtOnceOrOnOkAndAvbrytDropsTheRest();
  void optionsPlacementComesBackAtLeastTheDefaultSizeOnTheScreen();
  void messagesOpenOverTheWindowBeingStarted();
  void warningGoesOnWithOkAndStopsWithAvbrytOrItsNoMoreBox();
  void colouringReachesAFramesWidgetsWithTheOffset();
  void aboutBoxLinksAndToolWorkFromTheKeyboard();
  void aboutBoxOffersOnlyTheToolAndAddressesThereAre();
  void aboutBoxShowsTheProgramItsBuildAndTheLicencesColoured();
  void qtsOwnButtonsSpeakSwedish();
};

void DialogsTest::optionsOpenCentredOverTheWindowWithTheSettingsOnTheirTabs() {
  StartedWindow started;
  auto* window = started.window.get();
  window->move(60, 40);
  WhenModal([window](QDialog* dialog) {
    QCOMPARE(dialog->objectName(), QStringLiteral("frmOptions"));
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Alternativ"));
    const QPoint offCentre = dialog->frameGeometry().center() - window->frameGeometry().center();
    QVERIFY2(std::abs(offCentre.x()) <= 16 && std::abs(offCentre.y()) <= 16,
             qPrintable(QStringLiteral("%1,%2").arg(offCentre.x()).arg(offCentre.y())));
    auto* tabs = Child<QTabWidget>(dialog, "tabOptions");
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Generellt"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Yttre Förbindningar"));
    auto* frame = Child<QWidget>(dialog, "fraOptions");
    struct Box {
      const char* name;
      QString caption;
      bool checked;
    };
    for (const Box& box :
         {Box{"chkPageBreak", QStringLiteral("Visa sidbrytningar"), true},
          Box{"chkShowWarning", QStringLiteral("Visa varning när enkelbladsfiler skapas"), true},
          Box{"chkIncludeEmptyRows", QStringLiteral("Inkludera tomrader"), false},
          Box{"chkUseSlashTwo", QStringLiteral("Visa avslutande /2"), true}}) {
      auto* check = Child<QCheckBox>(frame, box.name);
      QCOMPARE(check->text(), box.caption);
      QCOMPARE(check->isChecked(), box.checked);
    }
    QCOMPARE(Child<QPushButton>(dialog, "cmdOK")->text(), QStringLiteral("OK"));
    QCOMPARE(Child<QPushButton>(dialog, "cmdCancel")->text(), QStringLiteral("Avbryt"));

    // The keyboard reaches every box and both buttons in order.
    Child<QCheckBox>(dialog, "chkPageBreak")->setFocus(Qt::TabFocusReason);
    QStringList reached;
    for (int i = 0; i < 5; ++i) {
      QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
      reached << dialog->focusWidget()->objectName();
    }
    QCOMPARE(reached,
             (QStringList{"chkShowWarning", "chkIncludeEmptyRows", "chkUseSlashTwo", "cmdOK", "cmdCancel"}));
    dialog->reject();
  });
  window->Command(sw::gui::kCommandOptions)->trigger();
  QVERIFY(!started.window->Session().Refreshing());
}

// What each box stores and does is the session's (tests/session); here the boxes reach it: the report
// boxes at once, the others on OK, and Avbryt drops what was not done at once.
void DialogsTest::optionsActAtOnceOrOnOkAndAvbrytDropsTheRest() {
  // Started without the empty rows, so the reload shows them.
  StartedWindow started([](sw::testing::FakeInstallation& install) {
    install.settings.SaveAppSetting("IncludeEmptyRows", "0");
  });
  auto* window = started.window.get();
  auto& session = window->Session();
  const QAbstractItemModel* model = started.Grid()->model();
  QVERIFY(YellowRows(model) > 0);
  std::size_t savedBefore = started.settings.saved.size();

  WhenModal([&](QDialog* dialog) {
    Tick(Child<QCheckBox>(dialog, "chkIncludeEmptyRows"));
    // At once: the session has it, and the window's command follows.
    QVERIFY(session.IncludeEmptyRows());
    QVERIFY(window->Command(305)->isChecked());
    Tick(Child<QCheckBox>(dialog, "chkPageBreak"));  // dropped by Avbryt
    QTest::keyClick(dialog, Qt::Key_Escape);
  });
  window->Command(sw::gui::kCommandOptions)->trigger();
  QCOMPARE(SavedSince(started.settings, savedBefore), (List{"IncludeEmptyRows"}));
  QVERIFY(session.IncludeEmptyRows());
  QVERIFY(YellowRows(model) > 0);

  // OK stores the four in order, then the dialog's placement, and the marks are drawn again.
  savedBefore = started.settings.saved.size();
  WhenModal([](QDialog* dialog) {
    Tick(Child<QCheckBox>(dialog, "chkPageBreak"));
    Tick(Child<QCheckBox>(dialog, "chkShowWarning"));
    QTest::keyClick(Child<QPushButton>(dialog, "cmdOK"), Qt::Key_Return);
  });
  window->Command(sw::gui::kCommandOptions)->trigger();
  QCOMPARE(
      SavedSince(started.settings, savedBefore),
      (List{"IncludeEmptyRows", "UseSlashTwo", "ShowSingleSheetWarning", "ShowPageBreaks", "frmOptions\\Top",
            "frmOptions\\Left", "frmOptions\\Height", "frmOptions\\Width", "frmOptions\\WinState"}));
  QCOMPARE(started.install.settings.GetAppSetting("ShowSingleSheetWarning", ""), std::string("0"));
  QCOMPARE(started.install.settings.GetAppSetting("ShowPageBreaks", ""), std::string("0"));
  QCOMPARE(YellowRows(model), 0);

  WhenModal([](QDialog* dialog) {
    auto* pageBreak = Child<QCheckBox>(dialog, "chkPageBreak");
    QVERIFY(!pageBreak->isChecked());
    QVERIFY(!Child<QCheckBox>(dialog, "chkShowWarning")->isChecked());
    Tick(pageBreak);
    Child<QPushButton>(dialog, "cmdOK")->click();
  });
  window->Command(sw::gui::kCommandOptions)->trigger();
  QVERIFY(YellowRows(model) > 0);
}

void DialogsTest::optionsPlacementComesBackAtLeastTheDefaultSizeOnTheScreen() {
  StartedWindow started;
  // Remembered on a larger screen: beyond this one's right and lower edges, and taller.
  for (const char* key : {"Top", "Left"}) started.install.settings.SaveAppSetting(key, "30000", "frmOptions");
  started.install.settings.SaveAppSetting("Width", "1000", "frmOptions");
  started.install.settings.SaveAppSetting("Height", "99999999", "frmOptions");
  sw::gui::OptionsDialog dialog(started.window->Session(), started.settings, started.window.get());
  const double twips = 1440.0 / dialog.logicalDpiX();
  QCOMPARE(dialog.width(), qRound(6930 / twips));
  QVERIFY(dialog.height() >= qRound(3900 / twips));
  const QRect area = dialog.screen()->availableGeometry();
  QVERIFY(area.contains(QRect(dialog.pos(), dialog.size())));
}

void DialogsTest::messagesOpenOverTheWindowBeingStarted() {
  // The main window during its start: placed, not shown yet, and not yet the dialogs' owner.
  QMainWindow window;
  window.move(420, 330);
  window.resize(300, 200);
  sw::gui::QtDialogs dialogs;
  QPoint offCentre;
  QString text;
  WhenModal([&](QDialog* box) {
    offCentre = box->frameGeometry().center() - window.geometry().center();
    text = Child<QLabel>(box, "qt_msgbox_label")->text();
    box->reject();
  });
  dialogs.ShowMessage({.text = "Det gick inte",
                       .title = "Fel",
                       .icon = sw::base::MessageIcon::kExclamation,
                       .buttons = sw::base::MessageButtons::kOk});
  QCOMPARE(text, QStringLiteral("Det gick inte"));
  QVERIFY2(std::abs(offCentre.x()) <= 16 && std::abs(offCentre.y()) <= 40,
           qPrintable(QStringLiteral("%1,%2").arg(offCentre.x()).arg(offCentre.y())));
}

void DialogsTest::warningGoesOnWithOkAndStopsWithAvbrytOrItsNoMoreBox() {
  // When the warning comes and what its answers do is generation's (tests/generate); here the window's
  // dialog is shown and answered.
  StartedWindow started(sw::testing::WithExampleTemplate);
  auto& install = started.install;
  auto& session = started.window->Session();
  session.UseSingleSheet(true);

  QSize shown;
  WhenModal([&shown](QDialog* dialog) {
    shown = dialog->size();
    QTest::keyClick(dialog, Qt::Key_Return);  // OK is the default button
  });
  session.Generate();
  QCOMPARE(install.dialogs.fileRequests.size(), std::size_t{1});  // went on to ask for the target
  const double twips = 1440.0 / QApplication::primaryScreen()->logicalDotsPerInchX();
  QVERIFY(shown.width() >= qRound(6270 / twips) - 1);
  QVERIFY(shown.height() >= qRound(4245 / twips) - 1);

  // Closing the window is Avbryt.
  WhenModal([](QDialog* dialog) { dialog->close(); });
  session.Generate();
  QCOMPARE(install.dialogs.fileRequests.size(), std::size_t{1});
  QCOMPARE(install.settings.GetAppSetting("ShowSingleSheetWarning", "1"), std::string("1"));

  QStringList texts;
  WhenModal([&texts](QDialog* dialog) {
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Varning!"));
    for (const char* name : {"lblOverwrite", "lblExample", "lblPageCount"})
      texts << Child<QLabel>(dialog, name)->text();
    auto* noMore = Child<QCheckBox>(dialog, "chkShowNoMore");
    QCOMPARE(noMore->text(), QStringLiteral("Visa inte denna dialog nästa gång"));
    QVERIFY(!noMore->isChecked());
    Tick(noMore);
    Child<QPushButton>(dialog, "cmdCancel")->click();
  });
  session.Generate();
  QCOMPARE(texts, (QStringList{QString::fromUtf8(sw::generate::kWarningOverwrite),
                               QString::fromUtf8(sw::generate::kWarningExample),
                               QString::fromUtf8(sw::generate::kWarningPageCount)}));
  QCOMPARE(install.dialogs.fileRequests.size(), std::size_t{1});  // stopped before the target was asked for
  QCOMPARE(install.settings.GetAppSetting("ShowSingleSheetWarning", ""), std::string("0"));
  QVERIFY(!install.settings.GetAppSetting("Width", "", "frmWarning").empty());
}

// Which names take the colour, and the offset's sum, are the preview's rule (tests/preview); the about box
// shows a window's own labels coloured and its buttons not. Here a frame's widgets take it too.
void DialogsTest::colouringReachesAFramesWidgetsWithTheOffset() {
  QWidget window;
  auto* frame = new QWidget(&window);
  frame->setObjectName(QStringLiteral("fraInner"));
  auto* nested = new QLabel(QStringLiteral("inre"), frame);
  nested->setObjectName(QStringLiteral("lblInner"));
  auto* button = new QPushButton(QStringLiteral("OK"), frame);
  button->setObjectName(QStringLiteral("cmdInner"));

  // An offset past the colours leaves the window as it was.
  QVERIFY(!sw::gui::ColourByPrefix(window, std::numeric_limits<std::int32_t>::max(), 1));
  QVERIFY(KeepsItsColours(&window) && KeepsItsColours(nested));

  QVERIFY(sw::gui::ColourByPrefix(window, 0x00D8E9EC, 0x10));
  const QColor expected(0xFC, 0xE9, 0xD8);  // 0x00D8E9FC
  for (QWidget* coloured : {&window, frame, static_cast<QWidget*>(nested)})
    QVERIFY2(HasColour(coloured, expected), qPrintable(coloured->objectName()));
  QVERIFY(KeepsItsColours(button));
}

void DialogsTest::aboutBoxLinksAndToolWorkFromTheKeyboard() {
  CountingTool tool(true);
  QList<QUrl> opened;
  sw::gui::AboutBox box({.systemInformation = &tool,
                         .openUrl = [&opened](const QUrl& url) { opened << url; },
                         .build = {.version = QStringLiteral("1.2.3"),
                                   .build = QStringLiteral("Bygge 2026-01-02"),
                                   .supportMail = QStringLiteral("support@firma.se"),
                                   .webAddress = QStringLiteral("https://www.firma.se")}});
  box.show();
  QVERIFY(QTest::qWaitForWindowActive(&box));
  QCOMPARE(box.focusWidget()->objectName(), QStringLiteral("cmdOK"));

  auto* sysInfo = Child<QPushButton>(&box, "cmdSysInfo");
  QCOMPARE(sysInfo->shortcut(), QKeySequence(QStringLiteral("Alt+S")));  // "&Systeminformation..."
  QTest::keyClick(sysInfo, Qt::Key_Space);
  QCOMPARE(tool.started, 1);

  // Tab reaches the two links in turn; Enter opens the one with the focus, as the access keys of their
  // captions reach them too.
  QTest::keyClick(box.focusWidget(), Qt::Key_Tab);
  QCOMPARE(box.focusWidget()->objectName(), QStringLiteral("lnkMail"));
  QTest::keyClick(box.focusWidget(), Qt::Key_Return);
  QTest::keyClick(box.focusWidget(), Qt::Key_Tab);
  QCOMPARE(box.focusWidget()->objectName(), QStringLiteral("lnkWeb"));
  QTest::keyClick(box.focusWidget(), Qt::Key_Space);
  QCOMPARE(Child<QLabel>(&box, "lblMailCaption")->buddy()->objectName(), QStringLiteral("lnkMail"));
  QCOMPARE(Child<QLabel>(&box, "lblWebCaption")->buddy()->objectName(), QStringLiteral("lnkWeb"));
  QCOMPARE(opened, (QList<QUrl>{QUrl(QStringLiteral("mailto:support@firma.se")),
                                QUrl(QStringLiteral("https://www.firma.se"))}));

  QTest::keyClick(&box, Qt::Key_Escape);
  QVERIFY(!box.isVisible());
}

void DialogsTest::aboutBoxOffersOnlyTheToolAndAddressesThereAre() {
  CountingTool unavailable(false);
  QVERIFY(!sw::gui::AboutBox({.systemInformation = &unavailable})
               .findChild<QPushButton*>(QStringLiteral("cmdSysInfo")));
  QVERIFY(!sw::gui::AboutBox({}).findChild<QPushButton*>(QStringLiteral("cmdSysInfo")));

  // A build given no addresses (as this one is, unless configured with them) offers none.
  QCOMPARE(sw::gui::ThisBuild().supportMail, QStringLiteral(SW_SUPPORT_MAIL));
  QCOMPARE(sw::gui::ThisBuild().webAddress, QStringLiteral(SW_WEB_ADDRESS));
  sw::gui::BuildFacts none = sw::gui::ThisBuild();
  none.supportMail.clear();
  none.webAddress.clear();
  sw::gui::AboutBox box({.build = none});
  for (const char* name : {"lnkMail", "lnkWeb"})
    QVERIFY(!box.findChild<QPushButton*>(QString::fromUtf8(name)));
  for (const char* name : {"lblMailCaption", "lblWebCaption"})
    QVERIFY(!box.findChild<QLabel*>(QString::fromUtf8(name)));
  for (const QLabel* label : box.findChildren<QLabel*>())
    QVERIFY2(!label->text().contains(QStringLiteral("example")), qPrintable(label->text()));

  // Given only a web address: that one alone.
  sw::gui::BuildFacts web = none;
  web.webAddress = QStringLiteral("https://www.firma.se");
  sw::gui::AboutBox withWeb({.build = web});
  QVERIFY(!withWeb.findChild<QPushButton*>(QStringLiteral("lnkMail")));
  QCOMPARE(Child<QPushButton>(&withWeb, "lnkWeb")->text(), QStringLiteral("https://www.firma.se"));
  QCOMPARE(Child<QLabel>(&withWeb, "lblWebCaption")->text(), QStringLiteral("&Webbplats:"));
}

void DialogsTest::aboutBoxShowsTheProgramItsBuildAndTheLicencesColoured() {
  QCOMPARE(sw::gui::AboutCommandCaption(), QStringLiteral("&Om Sheetwright..."));
  CountingTool tool(true);
  sw::gui::AboutBox box({.themeColour = 0x00F0D8C0, .systemInformation = &tool});
  QCOMPARE(box.windowTitle(), QStringLiteral("Om Sheetwright"));
  QCOMPARE(Child<QLabel>(&box, "lblTitle")->text(), QStringLiteral("Sheetwright"));
  QCOMPARE(Child<QLabel>(&box, "lblVersion")->text(), QStringLiteral("Version " SW_PROJECT_VERSION));
  QCOMPARE(Child<QLabel>(&box, "lblDescription")->text(), sw::gui::ProgramDescription());
  const QColor theme(0xC0, 0xD8, 0xF0);
  QVERIFY(HasColour(&box, theme));
  QVERIFY(HasColour(Child<QLabel>(&box, "lblTitle"), theme));
  for (const char* name : {"cmdOK", "imgLogo", "cmdSysInfo"})
    QVERIFY(KeepsItsColours(Child<QWidget>(&box, name)));

  // The build: the day it was configured, and the commit where the sources were checked out.
  const QString build = Child<QLabel>(&box, "lblBuild")->text();
  QVERIFY2(QRegularExpression(QStringLiteral("^Bygge \\d{4}-\\d{2}-\\d{2}( \\([0-9a-f]+\\))?$"))
               .match(build)
               .hasMatch(),
           qPrintable(build));

  // The licences of what ships with the program, in a box to scroll through.
  box.show();
  QVERIFY(QTest::qWaitForWindowExposed(&box));
  auto* licences = Child<QPlainTextEdit>(&box, "txtLicences");
  QVERIFY(licences->isReadOnly());
  QCOMPARE(Child<QLabel>(&box, "lblLicences")->buddy(), licences);
  const QString text = licences->toPlainText();
  for (const char* shipped : {"Qt 6", "GNU Lesser General Public License version 3", "shared libraries",
                              "== libzip ==", "== pugixml ==", "== CLI11 ==", "== zlib ==",
                              "GNU LESSER GENERAL PUBLIC LICENSE", "GNU GENERAL PUBLIC LICENSE"})
    QVERIFY2(text.contains(QString::fromUtf8(shipped)), shipped);
  QVERIFY(licences->verticalScrollBar()->maximum() > 0);
  licences->setFocus(Qt::TabFocusReason);
  QTest::keyClick(licences, Qt::Key_End, Qt::ControlModifier);
  // Ctrl+End reaches the end of the texts and scrolls there.
  QVERIFY(licences->textCursor().atEnd());
  QVERIFY(licences->verticalScrollBar()->value() >= licences->verticalScrollBar()->maximum() - 1);
}

void DialogsTest::qtsOwnButtonsSpeakSwedish() {
  // The installed program's folder comes first; a folder without the catalog is passed over.
  const QStringList folders = sw::gui::QtTranslationFolders(QStringLiteral("C:/Program Files/Sheetwright"));
  QCOMPARE(folders.first(),
           QDir(QStringLiteral("C:/Program Files/Sheetwright")).filePath(QStringLiteral("translations")));
  QVERIFY(
      !sw::gui::InstallQtSwedishTranslation(*QCoreApplication::instance(), {QDir::tempPath() + "/no-such"}));

  QVERIFY(sw::gui::InstallQtSwedishTranslation(
      *QCoreApplication::instance(), {QDir::tempPath() + "/no-such", QStringLiteral(SW_QT_TRANSLATIONS)}));
  QMessageBox box(QMessageBox::Question, QStringLiteral("Sheetwright"), QStringLiteral("Skriva över?"),
                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
  QCOMPARE(box.button(QMessageBox::Yes)->text(), QStringLiteral("&Ja"));
  QCOMPARE(box.button(QMessageBox::No)->text(), QStringLiteral("&Nej"));
  QCOMPARE(box.button(QMessageBox::Cancel)->text(), QStringLiteral("Avbryt"));

  // Qt's own file dialog, as the window opens it for "Välj textfil...".
  QFileDialog files(nullptr, QStringLiteral("Välj textfil"));
  files.setOption(QFileDialog::DontUseNativeDialog);
  QCOMPARE(files.labelText(QFileDialog::FileName), QStringLiteral("Fil&namn:"));
  QCOMPARE(files.labelText(QFileDialog::Reject), QStringLiteral("Avbryt"));
  QCOMPARE(files.labelText(QFileDialog::LookIn), QStringLiteral("Leta i:"));
}

QTEST_MAIN(DialogsTest)
#include "dialogs_test.moc"
