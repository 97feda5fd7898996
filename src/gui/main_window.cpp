#include "gui/main_window.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>
#include <cmath>
#include <map>

#include "base/out_of_memory.h"
#include "gui/about_box.h"
#include "gui/busy_state.h"
#include "gui/generation_cancel.h"
#include "gui/dialog_placement.h"
#include "gui/field_box.h"
#include "gui/options_dialog.h"
#include "gui/preview_grid.h"
#include "gui/report_table_model.h"
#include "gui/theme_look.h"
#include "session/column_fit.h"
#include "session/editing_messages.h"
#include "session/environment_report.h"
#include "session/preview_navigation.h"
#include "session/themes.h"
#include "session/toolbar_layout.h"
#include "session/window_rules.h"

namespace sw::gui {
namespace {

QString Q(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string S(const QString& text) {
  const QByteArray bytes = text.toUtf8();
  return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void FillCombo(QComboBox* combo, const std::vector<std::string>& items, int selected,
               const std::string& text) {
  const QSignalBlocker block(combo);
  combo->clear();
  for (const auto& item : items) combo->addItem(Q(item));
  combo->setCurrentIndex(selected);
  if (combo->isEditable()) combo->setEditText(Q(text));
}

// A picker's background as the program colours it; the system window colour is the style's own.
void PaintPicker(QComboBox* combo, std::uint32_t windowsColour) {
  const QColor colour = GridColour(windowsColour);
  QPalette palette = combo->style()->standardPalette();
  if (colour.isValid()) {
    palette.setColor(QPalette::Base, colour);
    palette.setColor(QPalette::Button, colour);
  }
  combo->setPalette(palette);
}

QString StartLabel(const char* text) {
  return QString::fromUtf8(text);
}

// The version the toolbar layout is saved with; a layout of another version is not restored.
constexpr int kToolbarLayoutVersion = 1;

void FillBackground(QWidget* widget, const QColor& colour) {
  QPalette palette = widget->palette();
  palette.setColor(QPalette::Window, colour);
  widget->setPalette(palette);
  widget->setAutoFillBackground(true);
}

}  // namespace

MainWindow::MainWindow(MainWindowServices services, QWidget* parent)
    : QMainWindow(parent), services_(std::move(services)), warning_(services_.session.settings, this) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QString::fromUtf8(base::kApplicationTitle));
  setAcceptDrops(true);
  BuildWidgets();
  BuildCommands();
  progress_ = std::make_unique<ProgressBarLoadProgress>(progressBar_, [this](bool busy) { SetBusy(busy); });
  session::SessionServices sessionServices = services_.session;
  sessionServices.progress = progress_.get();
  sessionServices.warning = &warning_;
  sessionServices.setMousePointer = [this](generate::MousePointer pointer) { SetGenerationPointer(pointer); };
  sessionServices.layoutColumns = [this] { columnsNeedLayout_ = true; };
  sessionServices.generationStatus = [this](const session::GenerationStatus& status) {
    // The save runs without a break: what it says is shown before it starts.
    if (!status.saving && !statusPacer_.Due()) return;
    statusBar()->showMessage(Q(status.text));
    // The save is one step of unknown length: the bar says only that the run is busy.
    if (status.saving) progressBar_->setRange(0, 0);
    cancel_->SetStoppable(!status.saving);
    RepaintPending();
  };
  sessionServices.generationCancelRequested = [this] { return cancel_->Requested(); };
  session_ = std::make_unique<session::Session>(std::move(sessionServices));
  session_->AddObserver(*this);
  // The CAD system writes its report again while the window is open; a timer asks, since a watcher
  // loses a file that is replaced rather than written over.
  dumpWatch_ = new QTimer(this);
  dumpWatch_->setObjectName(QStringLiteral("tmrDumpWatch"));
  dumpWatch_->setInterval(1000);
  connect(dumpWatch_, &QTimer::timeout, this, &MainWindow::CheckDumpOnDisk);
  dumpWatch_->start();
  model_ = new ReportTableModel(session_->Table(), this);
  grid_->setModel(model_);
  ConnectWidgets();

  // The load step: the session runs it in order and calls back for the window's own steps.
  Apply([this] {
    session_->Start([this] {
      const bool placed = RestorePlacement();
      // The grid gets its restored size now, so the column layout at the end of the load shares out
      // the width the user will see.
      layout()->activate();
      centralWidget()->layout()->activate();
      theme_ = session::StartTheme(services_.session.settings);
      const QByteArray layout = QByteArray::fromBase64(QByteArray::fromStdString(
          session::LoadToolbarLayout(services_.session.settings, session::kMainWindowName)));
      if (!layout.isEmpty()) restoreState(layout, kToolbarLayoutVersion);
      Command(kCommandStandardToolbar)->setChecked(!bars_.standard()->isHidden());
      ShowTheme(theme_);
      if (!placed) {
        // Measured in the look it starts with, with its toolbars where they were left.
        PlaceAtFirstStart();
        this->layout()->activate();
        centralWidget()->layout()->activate();
      }
    });
  });
}

MainWindow::~MainWindow() {
  // Children losing the focus while they are destroyed (an edited picker, a field box) must not reach
  // a window that is no longer one.
  for (QObject* child : findChildren<QObject*>()) QObject::disconnect(child, nullptr, this, nullptr);
  // The grid reads the session's table to the end, so it goes before the session does.
  delete grid_;
  delete model_;
}

void MainWindow::BuildWidgets() {
  auto* central = new QWidget(this);
  auto* outer = new QVBoxLayout(central);

  auto* sheetRow = new QHBoxLayout;
  cboSheetNo_ = new QComboBox(central);
  cboSheetNo_->setObjectName(QStringLiteral("cboSheetNo"));
  cboSheetNo_->setEditable(true);
  cboSheetNo_->setInsertPolicy(QComboBox::NoInsert);
  // The combo box hands the keys it gets to its line edit without passing the line edit's event
  // filters, so the filter sits on both; a paste or a drop is checked by the validator.
  auto* sheetNoKeys = new SheetNumberKeyFilter(cboSheetNo_);
  cboSheetNo_->installEventFilter(sheetNoKeys);
  cboSheetNo_->lineEdit()->installEventFilter(sheetNoKeys);
  cboSheetNo_->setValidator(new SheetNumberValidator(cboSheetNo_));
  auto* sheetLabel = new QLabel(StartLabel("Första bladnummer"), central);
  sheetLabel->setBuddy(cboSheetNo_);
  sheetRow->addWidget(sheetLabel);
  sheetRow->addWidget(cboSheetNo_);
  sheetRow->addStretch(1);
  outer->addLayout(sheetRow);

  // The two frames share one place and are shown alternately (commands 401 and 402).
  fraFiles_ = new QGroupBox(StartLabel("Filer"), central);
  fraFiles_->setObjectName(QStringLiteral("fraFiles"));
  auto* files = new QGridLayout(fraFiles_);
  cboRdsFile_ = new QComboBox(fraFiles_);
  cboRdsFile_->setObjectName(QStringLiteral("cboRdsFile"));
  lblError_ = new QLabel(fraFiles_);
  lblError_->setObjectName(QStringLiteral("lblError"));
  lblError_->setStyleSheet(QStringLiteral("color: #c00000"));
  lblError_->setVisible(false);
  cboVoltDump_ = new QComboBox(fraFiles_);
  cboVoltDump_->setObjectName(QStringLiteral("cboVoltDump"));
  cboVoltDump_->setEditable(true);
  cboVoltDump_->setInsertPolicy(QComboBox::NoInsert);
  for (QComboBox* combo : {cboRdsFile_, cboVoltDump_}) {
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(20);
  }
  files->addWidget(new QLabel(StartLabel("Rapportmall"), fraFiles_), 1, 0);
  files->addWidget(cboRdsFile_, 1, 1);
  files->addWidget(lblError_, 2, 1);
  files->addWidget(new QLabel(StartLabel("VOLTARIS-rapport"), fraFiles_), 3, 0);
  files->addWidget(cboVoltDump_, 3, 1);
  files->setColumnStretch(1, 1);
  outer->addWidget(fraFiles_);

  fraFields_ = new QGroupBox(StartLabel("Textfält för ritningshuvud"), central);
  fraFields_->setObjectName(QStringLiteral("fraFields"));
  auto* fields = new QGridLayout(fraFields_);
  constexpr int kPerColumn = 15;
  for (int i = 0; i < 30; ++i) {
    auto* label = new QLabel(fraFields_);
    label->setObjectName(QStringLiteral("lblField%1").arg(i));
    auto* box = new FieldBox(i, fraFields_);
    box->setEnabled(false);
    label->setBuddy(box);
    const int column = (i / kPerColumn) * 2;
    fields->addWidget(label, i % kPerColumn, column);
    fields->addWidget(box, i % kPerColumn, column + 1);
    lblField_[static_cast<std::size_t>(i)] = label;
    txtField_[static_cast<std::size_t>(i)] = box;
  }
  fields->setColumnStretch(1, 1);
  fields->setColumnStretch(3, 1);
  fraFields_->setVisible(false);
  outer->addWidget(fraFields_);

  // The grid, or in its place what the start looked for when it found nothing to show.
  gridArea_ = new QStackedWidget(central);
  gridArea_->setObjectName(QStringLiteral("stkGridArea"));
  grid_ = new PreviewGrid(gridArea_);
  gridArea_->addWidget(grid_);
  nothingFound_ = new QWidget(gridArea_);
  nothingFound_->setObjectName(QStringLiteral("pnlNothingFound"));
  // Whatever the text says, the window's least size is the grid's.
  nothingFound_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
  auto* nothingLayout = new QVBoxLayout(nothingFound_);
  lblNothingFound_ = new QLabel(nothingFound_);
  lblNothingFound_->setObjectName(QStringLiteral("lblNothingFound"));
  lblNothingFound_->setWordWrap(true);
  lblNothingFound_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblNothingFound_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  auto* chooseDump = new QPushButton(QString::fromUtf8("Välj textfil..."), nothingFound_);
  chooseDump->setObjectName(QStringLiteral("btnChooseTextFile"));
  connect(chooseDump, &QPushButton::clicked, this, [this] { dispatcher_.Dispatch(kCommandChooseTextFile); });
  nothingLayout->addWidget(lblNothingFound_);
  nothingLayout->addWidget(chooseDump, 0, Qt::AlignLeft);
  nothingLayout->addStretch(1);
  gridArea_->addWidget(nothingFound_);
  outer->addWidget(gridArea_, 1);
  setCentralWidget(central);

  progressBar_ = new QProgressBar(this);
  progressBar_->setObjectName(QStringLiteral("prgLoad"));
  progressBar_->setMaximumWidth(200);
  progressBar_->setVisible(false);
  summary_ = new QLabel(this);
  summary_->setObjectName(QStringLiteral("lblSummary"));
  auto* cancelButton = new QPushButton(QString::fromUtf8("Avbryt"), this);
  cancelButton->setObjectName(QStringLiteral("btnCancelGeneration"));
  cancel_ = new GenerationCancel(cancelButton, this);
  statusBar()->addPermanentWidget(cancelButton);
  statusBar()->addPermanentWidget(progressBar_);
  statusBar()->addPermanentWidget(summary_);
}

QWidget* MainWindow::BuildTemplateDirectoryControl() {
  auto* control = new QWidget(this);
  control->setObjectName(QStringLiteral("ctlRdsDir"));
  auto* row = new QHBoxLayout(control);
  row->setContentsMargins(2, 0, 2, 0);
  cboRdsDir_ = new QComboBox(control);
  cboRdsDir_->setObjectName(QStringLiteral("cboRdsDir"));
  cboRdsDir_->setEditable(true);
  cboRdsDir_->setInsertPolicy(QComboBox::NoInsert);
  cboRdsDir_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  cboRdsDir_->setMinimumContentsLength(16);
  auto* caption = new QLabel(StartLabel("Katalog rapportmallar(RDS)"), control);
  caption->setObjectName(QStringLiteral("lblRdsDir"));
  caption->setBuddy(cboRdsDir_);
  row->addWidget(caption);
  row->addWidget(cboRdsDir_, 1);
  return control;
}

void MainWindow::BuildCommands() {
  bars_ = BuildCommandBars(*this, dispatcher_, BuildTemplateDirectoryControl());
  Command(kCommandPrevious)->setEnabled(false);
  // The Delete key, while the grid has the focus, deletes the placement of the current row.
  auto* deletePlacement = new QAction(grid_);
  deletePlacement->setObjectName(QStringLiteral("cmd%1").arg(session::kCommandDeletePlacement));
  deletePlacement->setShortcut(QKeySequence(Qt::Key_Delete));
  deletePlacement->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  connect(deletePlacement, &QAction::triggered, this,
          [this] { dispatcher_.Dispatch(session::kCommandDeletePlacement); });
  grid_->addAction(deletePlacement);
  ConnectCommands();
}

void MainWindow::ConnectCommands() {
  auto& on = dispatcher_;
  on.OnOutOfMemory([this](int id) {
    std::string doing = "kommandot";
    for (const auto& text : CommandTexts()) {
      if (text.id == id) doing += " \"" + session::RemoveAll(text.caption, "&") + "\"";
    }
    services_.session.dialogs.ShowMessage(
        {base::OutOfMemoryMessage(doing), "Fel", base::MessageIcon::kCritical, base::MessageButtons::kOk});
  });
  on.On(kCommandExit, [this] { close(); });
  on.On(kCommandUndo, [this] { Apply([this] { session_->Undo(); }); });
  on.On(kCommandRedo, [this] { Apply([this] { session_->Redo(); }); });
  on.On(kCommandFindPlacement, [this] { FindPlacement(); });
  on.On(kCommandGoToPage, [this] { GoToPage(); });
  // The Delete key on the grid, as the popup's "Radera placering" on the current row.
  on.On(session::kCommandDeletePlacement,
        [this] { Apply([this, row = grid_->CurrentTableRow()] { session_->DeletePlacementAt(row); }); });
  for (const auto& theme : session::Themes()) {
    on.On(theme.commandId, [this, number = theme.number] { ApplyTheme(number); });
  }
  on.On(kCommandStandardToolbar, [this] { ToggleStandardToolbar(); });
  on.On(kCommandIncludeEmptyRows, [this] { Apply([this] { session_->ToggleIncludeEmptyRows(); }); });
  on.On(kCommandSlashTwo, [this] { Apply([this] { session_->ToggleUseSlashTwo(); }); });
  on.On(kCommandSingleSheet, [this] { Apply([this] { session_->ToggleSingleSheet(); }); });
  on.On(kCommandFixExport, [this] {
    Apply([this] {
      session_->FixExport(true);
      session_->ShowPageBreaks();
    });
  });
  on.On(kCommandNext, [this] { SwitchView(true); });
  on.On(kCommandPrevious, [this] { SwitchView(false); });
  on.On(kCommandGenerate, [this] { Generate(); });
  on.On(kCommandResetAppearance, [this] { ResetAppearance(); });
  on.On(kCommandRefresh, [this] { Apply([this] { session_->Refresh(); }); });
  on.On(kCommandChooseTextFile, [this] { Apply([this] { session_->ChooseDumpFile(); }); });
  on.On(kCommandEditIni, [this] { session_->EditTemplateIni(); });
  on.On(kCommandEditTemplate, [this] { session_->EditTemplateWorkbook(); });
  // Without Excel the dump is first written as a workbook, which takes a while for a long dump.
  on.On(kCommandEditDump, [this] { RunBusy([this] { session_->EditReportDump(); }); });
  on.On(kCommandOptions, [this] {
    RunOptionsDialog(this, *session_, services_.session.settings,
                     [this](const std::function<void()>& op) { Apply(op); });
  });
  on.On(kCommandAbout, [this] { RunAboutBox(this, ThemeColour()); });
  // Ctrl+V (902) and Ctrl+A (901) have no action by design.
}

std::int32_t MainWindow::ThemeColour() const {
  return session::ThemeOrDefault(theme_).colour;
}

void MainWindow::ApplyTheme(int themeNumber) {
  services_.session.settings.SaveAppSetting("Theme", std::to_string(themeNumber));
  ShowTheme(themeNumber);
}

void MainWindow::ShowTheme(int themeNumber) {
  theme_ = themeNumber;
  const session::ThemeEntry look = session::ThemeOrDefault(themeNumber);
  ApplyThemeLook(look);
  const QColor colour = FromPackedColour(look.colour);
  FillBackground(this, colour);
  FillBackground(fraFiles_, colour);
  FillBackground(fraFields_, colour);
  for (QLabel* label : lblField_) FillBackground(label, colour);
  // Exactly one entry checked, the chosen one; a stored number no command chooses checks none.
  for (const auto& theme : session::Themes())
    Command(theme.commandId)->setChecked(theme.number == themeNumber);
}

void MainWindow::ShowCommands() {
  const session::Session& ws = *session_;
  Command(kCommandIncludeEmptyRows)->setChecked(ws.IncludeEmptyRows());
  Command(kCommandSlashTwo)->setChecked(ws.UseSlashTwo());
  Command(kCommandSingleSheet)->setChecked(ws.SingleSheet());
  Command(kCommandSingleSheet)->setEnabled(ws.SingleSheetEnabled());
  Command(kCommandUndo)->setEnabled(ws.CanUndo());
  Command(kCommandRedo)->setEnabled(ws.CanRedo());
  // Without a template, or without a dump, these would only say that there is none.
  const bool templateChosen = session::TemplateChosen(ws);
  Command(kCommandEditTemplate)->setEnabled(templateChosen);
  Command(kCommandEditIni)->setEnabled(templateChosen);
  Command(kCommandGenerate)->setEnabled(templateChosen && !iniBlocksGenerate_);
  Command(kCommandEditDump)->setEnabled(!ws.ReportDumps().text.empty());
  const bool rows = ws.Table().Rows() > 1;
  Command(kCommandFindPlacement)->setEnabled(rows);
  Command(kCommandGoToPage)->setEnabled(rows);
}

void MainWindow::ToggleStandardToolbar() {
  QToolBar* standard = bars_.standard();
  standard->setVisible(standard->isHidden());
  Command(kCommandStandardToolbar)->setChecked(!standard->isHidden());
}

void MainWindow::ResetAppearance() {
  const auto defaults =
      session::AskResetAppearance(services_.session.dialogs, services_.session.programFolder);
  if (!defaults) return;
  // The window closes with its usual saves; closing finishes the reset, and the program opens the
  // window again from the settings the defaults file wrote.
  defaultsFile_ = *defaults;
  close();
}

QAction* MainWindow::Command(int id) const {
  return findChild<QAction*>(QStringLiteral("cmd%1").arg(id));
}

void MainWindow::ConnectWidgets() {
  connect(cboRdsDir_, &QComboBox::activated, this,
          [this](int index) { Apply([this, index] { session_->ChooseTemplateDirectory(index); }); });
  connect(cboRdsDir_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
    const std::string text = S(cboRdsDir_->currentText());
    if (text != session_->TemplateDirectories().text)
      Apply([this, text] { session_->TypeTemplateDirectory(text); });
  });
  connect(cboRdsFile_, &QComboBox::activated, this,
          [this](int index) { Apply([this, index] { session_->ChooseTemplate(index); }); });
  connect(cboVoltDump_, &QComboBox::activated, this,
          [this](int index) { Apply([this, index] { session_->ChooseReportDump(index); }); });
  connect(cboVoltDump_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
    const std::string text = S(cboVoltDump_->currentText());
    if (text != session_->ReportDumps().text) Apply([this, text] { session_->TypeReportDump(text); });
  });
  connect(cboSheetNo_->lineEdit(), &QLineEdit::textEdited, this,
          [this](const QString& text) { session_->SetSheetNumber(S(text)); });
  connect(cboSheetNo_, &QComboBox::activated, this,
          [this](int index) { session_->ChooseSheetNumber(index); });

  for (FieldBox* box : txtField_) {
    // Changed, not only edited: the box's own undo (Ctrl+Z while typing in it) reaches the session too.
    connect(box, &QLineEdit::textChanged, this,
            [this, box](const QString& text) { session_->SetFieldText(box->Index(), S(text)); });
    connect(box, &FieldBox::focusLost, this, [this, box](int index) {
      session_->CommitFieldText(index);
      const QString shown = Q(session_->Fields().entries[static_cast<std::size_t>(index)].text);
      if (box->text() != shown) box->setText(shown);
    });
    connect(box, &FieldBox::enterPressed, this, [this, box](int index) {
      const int next = session_->PressEnterInField(index);
      box->setText(Q(session_->Fields().entries[static_cast<std::size_t>(index)].text));
      txtField_[static_cast<std::size_t>(next)]->setFocus(Qt::TabFocusReason);
    });
  }

  // Columns the user has not resized are fitted again to the grid's new width, so that the layout of
  // a load does not depend on whether the window had its final size yet.
  connect(grid_->horizontalHeader(), &QHeaderView::sectionResized, this, [this] {
    if (!layingOutColumns_) columnsFitted_ = false;
  });
  connect(grid_, &PreviewGrid::resized, this, [this] {
    if (columnsFitted_ && !busy_ && !model_->Frozen()) LayOutColumns();
  });
  connect(grid_, &PreviewGrid::popupRequested, this, &MainWindow::ShowPopup);
  connect(grid_, &PreviewGrid::rowDoubleClicked, this, &MainWindow::DoubleClickRow);
}

double MainWindow::TwipsPerPixel() const {
  const double dpi = logicalDpiX() > 0 ? logicalDpiX() : 96.0;
  return 1440.0 / dpi;
}

void MainWindow::PlaceAtFirstStart() {
  const double twips = TwipsPerPixel();
  const int least = static_cast<int>(std::lround(session::kMainWindowDefaultSize / twips));
  const QRect wanted(QPoint(0, 0), FirstStartSize().expandedTo(QSize(least, least)));
  const QRect area = AvailableAreaFor(screen() ? screen()->geometry() : wanted);
  QRect frame = FitInto(wanted, area, QSize(least, least));
  frame.moveCenter(area.center());
  frame = FitInto(frame, area, QSize(least, least));
  move(frame.topLeft());
  resize(frame.size());
}

bool MainWindow::RestorePlacement() {
  const double twips = TwipsPerPixel();
  auto pixels = [twips](float value) { return static_cast<int>(std::lround(value / twips)); };
  const QSize least(pixels(session::kMainWindowDefaultSize), pixels(session::kMainWindowDefaultSize));
  const std::string_view section = session::kMainWindowName;
  const bool placed = !services_.session.settings.GetAppSetting("Top", "", section).empty() ||
                      !services_.session.settings.GetAppSetting("Left", "", section).empty();
  if (!placed) return false;
  const QScreen* display = screen() ? screen() : QGuiApplication::primaryScreen();
  const QRect screenArea = display ? display->geometry() : QRect(0, 0, 1024, 768);
  const auto placement = session::RestoreWindowPlacement(
      services_.session.settings, session::kMainWindowName, session::kMainWindowDefaultSize,
      session::kMainWindowDefaultSize,
      {static_cast<float>(screenArea.width() * twips), static_cast<float>(screenArea.height() * twips)});
  // Kept on the screen it was on (or the primary one) as the screens are now: another layout or scale
  // factor must not leave it beyond the edge.
  const QRect restored(pixels(placement.left), pixels(placement.top), pixels(placement.width),
                       pixels(placement.height));
  const QRect frame = FitInto(restored, AvailableAreaFor(restored), least);
  move(frame.topLeft());
  resize(frame.size());
  if (placement.state == session::WindowState::kMaximised) setWindowState(Qt::WindowMaximized);
  if (placement.state == session::WindowState::kMinimised) setWindowState(Qt::WindowMinimized);
  return true;
}

QSize MainWindow::FirstStartSize() {
  constexpr int kRowsShown = 20;
  // Laid out at a generous size first, so that nothing is squeezed when the rest is measured.
  resize(4000, 4000);
  layout()->activate();
  centralWidget()->layout()->activate();
  // The toolbars stand in rows; each row must hold its bars at their full length.
  std::map<int, int> rowWidths;
  for (QToolBar* bar : bars_.toolbars) {
    const Qt::ToolBarArea area = toolBarArea(bar);
    if (bar->isHidden() || bar->isFloating() || (area != Qt::TopToolBarArea && area != Qt::BottomToolBarArea))
      continue;
    const int spacing = bar->layout() ? bar->layout()->spacing() : 0;
    rowWidths[(area == Qt::TopToolBarArea ? 0 : 100000) + bar->y()] += bar->sizeHint().width() + spacing + 4;
  }
  int width = centralWidget()->minimumSizeHint().width();
  for (const auto& row : rowWidths) width = std::max(width, row.second);
  width += 2 * style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent, nullptr, this) + 8;
  // The grid shows its heading and the rows with room for a horizontal scroll bar below them, and a
  // row more for the spacing and borders this measure leaves out.
  const int gridHeight = grid_->horizontalHeader()->sizeHint().height() +
                         (kRowsShown + 1) * grid_->verticalHeader()->defaultSectionSize() +
                         grid_->horizontalScrollBar()->sizeHint().height() + 2 * grid_->frameWidth();
  // Everything else at its least height: the grid takes what the window gains.
  const int height = minimumSizeHint().height() - grid_->minimumSizeHint().height() + gridHeight;
  return {width, height};
}

void MainWindow::SavePlacement() {
  // A minimised window is closed from normal state, so its normal placement is what is kept.
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  const QRect normal = isMaximized() ? normalGeometry() : QRect(pos(), size());
  const double twips = TwipsPerPixel();
  session::WindowPlacement placement{
      .top = static_cast<float>(normal.top() * twips),
      .left = static_cast<float>(normal.left() * twips),
      .height = static_cast<float>(normal.height() * twips),
      .width = static_cast<float>(normal.width() * twips),
      .state = isMaximized() ? session::WindowState::kMaximised : session::WindowState::kNormal};
  session::SaveMainWindowAtClose(services_.session.settings, session::PlacementAtClose(placement));
}

void MainWindow::closeEvent(QCloseEvent* event) {
  SavePlacement();
  session_->Close();
  session::SaveToolbarLayout(services_.session.settings, session::kMainWindowName,
                             saveState(kToolbarLayoutVersion).toBase64().toStdString());
  event->accept();
  if (defaultsFile_) {
    std::unique_ptr<session::DefaultsMerger> platformMerger;
    session::DefaultsMerger* merger = services_.defaultsMerger;
    if (!merger) {
      platformMerger = session::CreateDefaultsMerger(services_.session.launcher, services_.session.settings);
      merger = platformMerger.get();
    }
    session::RestoreStandardAppearance(services_.session.settings, *merger, session::kMainWindowName,
                                       *defaultsFile_);
    defaultsFile_.reset();
    restartRequested_ = true;
  }
}

void MainWindow::Apply(const std::function<void()>& operation) {
  if (busy_) return;  // a repaint during a load must not start another operation
  busy_ = true;
  const int currentRow = grid_->CurrentTableRow();
  const int currentColumn = std::max(grid_->currentIndex().column(), 0);
  const int scroll = grid_->verticalScrollBar()->value();
  std::vector<int> widths;
  for (int c = 0; c < model_->columnCount(); ++c) widths.push_back(grid_->columnWidth(c));
  columnsNeedLayout_ = false;

  {
    // A failing operation still leaves the grid attached and the window ready for the next one.
    struct Attached {
      MainWindow& window;
      ~Attached() {
        window.model_->Thaw();
        window.busy_ = false;
      }
    } attached{*this};
    model_->Freeze();
    operation();
  }

  if (columnsNeedLayout_) {
    LayOutColumns();
  } else if (static_cast<int>(widths.size()) == model_->columnCount()) {
    layingOutColumns_ = true;
    for (int c = 0; c < model_->columnCount(); ++c)
      grid_->setColumnWidth(c, widths[static_cast<std::size_t>(c)]);
    layingOutColumns_ = false;
  }
  if (currentRow >= 1 && model_->rowCount() > 0) {
    const int row = std::min(currentRow, model_->rowCount()) - 1;
    grid_->setCurrentIndex(model_->index(row, std::min(currentColumn, model_->columnCount() - 1)));
    grid_->verticalScrollBar()->setValue(scroll);
  }
  if (!pending_.Empty()) ShowSession();
}

void MainWindow::LayOutColumns() {
  const int columns = model_->columnCount();
  if (columns == 0) return;
  const bool wasLayingOut = layingOutColumns_;
  layingOutColumns_ = true;
  // Each column's contents: headings, the rows on screen and a sample of the rest.
  std::vector<int> contents;
  for (int c = 0; c < columns; ++c) {
    grid_->resizeColumnToContents(c);
    contents.push_back(grid_->columnWidth(c));
  }
  // The room for rows, counted the same whether or not the vertical scroll bar shows yet.
  const int view = grid_->width() - 2 * grid_->frameWidth() - grid_->verticalScrollBar()->sizeHint().width();
  const auto widths = session::FitColumnWidths(std::move(contents), view);
  for (int c = 0; c < columns; ++c) grid_->setColumnWidth(c, widths[static_cast<std::size_t>(c)]);
  columnsFitted_ = true;
  layingOutColumns_ = wasLayingOut;
}

void MainWindow::ShowSession() {
  pending_ = {};
  const session::Session& ws = *session_;
  const auto& dirs = ws.TemplateDirectories();
  const auto& templates = ws.Templates();
  const auto& dumps = ws.ReportDumps();
  const auto& sheetNumbers = ws.SheetNumbers();
  FillCombo(cboRdsDir_, dirs.items, dirs.selected, dirs.text);
  FillCombo(cboRdsFile_, templates.items, templates.selected, templates.text);
  PaintPicker(cboRdsFile_, templates.backColour);
  lblError_->setText(Q(templates.errorLabel));
  lblError_->setVisible(templates.errorLabelVisible);
  FillCombo(cboVoltDump_, dumps.items, dumps.selected, dumps.text);
  FillCombo(cboSheetNo_, sheetNumbers.items, sheetNumbers.selected, sheetNumbers.text);

  for (std::size_t i = 0; i < txtField_.size(); ++i) {
    const auto& entry = ws.Fields().entries[i];
    lblField_[i]->setText(Q(entry.caption));
    const QSignalBlocker block(txtField_[i]);
    if (txtField_[i]->text() != Q(entry.text)) txtField_[i]->setText(Q(entry.text));
    txtField_[i]->setEnabled(entry.enabled);
  }

  const auto summary = ws.Summary();
  QString text = QString::fromUtf8("Rader: %1   Placeringar: %2").arg(summary.rows).arg(summary.placements);
  if (summary.pages) text += QString::fromUtf8("   Sidor: %1").arg(*summary.pages);
  summary_->setText(text);
  ShowGridArea();
  ShowCommands();
  ShowRecentDumps();
}

void MainWindow::ShowRecentDumps() {
  auto* menu = findChild<QMenu*>(QStringLiteral("mnuSenaste"));
  const auto& recent = session_->RecentDumps();
  menu->setEnabled(!recent.empty());
  if (recent == recentShown_) return;
  recentShown_ = recent;
  // The entry being chosen may be the one running this: the old entries go when it has ended.
  for (QAction* old : menu->actions()) {
    menu->removeAction(old);
    old->deleteLater();
  }
  for (std::size_t i = 0; i < recent.size(); ++i) {
    QString caption = Q(recent[i]);
    caption.replace(QStringLiteral("&"), QStringLiteral("&&"));
    QAction* entry = menu->addAction(QStringLiteral("&%1 ").arg(i + 1) + caption);
    entry->setObjectName(QStringLiteral("recentDump%1").arg(i));
    connect(entry, &QAction::triggered, this, [this, index = static_cast<int>(i)] {
      Apply([this, index] { session_->OpenRecentDump(index); });
    });
  }
}

namespace {

// The one local file of a drag, "" when it brings anything else.
QString DraggedFile(const QMimeData* data) {
  if (!data || !data->hasUrls() || data->urls().size() != 1 || !data->urls().front().isLocalFile()) return {};
  return QDir::toNativeSeparators(data->urls().front().toLocalFile());
}

}  // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!busy_ && !DraggedFile(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString file = DraggedFile(event->mimeData());
  if (file.isEmpty()) return;
  event->acceptProposedAction();
  Apply([this, path = S(file)] { session_->TypeReportDump(path); });
}

void MainWindow::ShowPopup(int tableRow, int pointerY, const QPoint& globalPos) {
  if (!session::ShowsPreviewPopup(2, tableRow)) return;
  const auto commands = session_->PopupCommands(tableRow, pointerY, grid_->HeadingHeight());
  QMenu popup(this);
  popup.setObjectName(QStringLiteral("Popup"));
  for (const auto& command : commands) {
    QAction* action = popup.addAction(Q(command.caption));
    action->setObjectName(QStringLiteral("cmd%1").arg(command.id));
    action->setEnabled(command.enabled);
    action->setData(static_cast<int>(command.action));
  }
  QAction* chosen = popup.exec(globalPos);
  if (!chosen) return;
  const auto action = static_cast<session::PreviewAction>(chosen->data().toInt());
  Apply([this, tableRow, action] { session_->RunPreviewAction(tableRow, action); });
}

void MainWindow::DoubleClickRow(int tableRow) {
  const auto action = session_->DoubleClickAction(tableRow);
  if (action == session::PreviewAction::kNone) return;
  Apply([this, tableRow, action] { session_->RunPreviewAction(tableRow, action); });
}

void MainWindow::SwitchView(bool toFields) {
  fieldsShown_ = toFields;
  fraFiles_->setVisible(!toFields);
  fraFields_->setVisible(toFields);
  Command(kCommandNext)->setEnabled(!toFields);
  Command(kCommandPrevious)->setEnabled(toFields);
  UpdateGenerateEnabled();
}

void MainWindow::UpdateGenerateEnabled() {
  // Set when the view switches, as the command bars always did: a template whose INI file has to be
  // edited first cannot be generated from.
  iniBlocksGenerate_ = iniEditRequested_ || session_->Definition().IniError;
  Command(kCommandGenerate)->setEnabled(!iniBlocksGenerate_ && session::TemplateChosen(*session_));
}

namespace {

// A one-line question in the look of the program's other dialogs; nothing when it was cancelled.
std::optional<QString> AskText(QWidget* parent, const char* objectName, const char* title, const char* label,
                               const QString& initial) {
  QInputDialog dialog(parent);
  dialog.setObjectName(QString::fromUtf8(objectName));
  dialog.setWindowTitle(QString::fromUtf8(title));
  dialog.setLabelText(QString::fromUtf8(label));
  dialog.setInputMode(QInputDialog::TextInput);
  dialog.setTextValue(initial);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue();
}

}  // namespace

void MainWindow::FindPlacement() {
  if (session_->Table().Rows() <= 1) return;
  const auto text = AskText(this, "dlgSokPlacering", "Sök placering", "Placering som innehåller:", lastSearch_);
  if (!text) return;
  lastSearch_ = *text;
  const auto found = session::FindPlacement(session_->Table(), S(*text), grid_->CurrentTableRow());
  if (!found.row) {
    services_.session.dialogs.ShowMessage(
        {found.message, "Sök placering", base::MessageIcon::kInformation, base::MessageButtons::kOk});
    return;
  }
  SelectTableRow(*found.row);
}

void MainWindow::GoToPage() {
  if (session_->Table().Rows() <= 1) return;
  const auto text = AskText(this, "dlgGaTillSida", "Gå till sida", "Sidnummer:", QString());
  if (!text) return;
  bool number = false;
  const int page = text->trimmed().toInt(&number);
  const auto target = session::FirstRowOfPage(session_->Table(), number ? page : 0);
  if (!target.row) {
    services_.session.dialogs.ShowMessage(
        {target.message, "Gå till sida", base::MessageIcon::kExclamation, base::MessageButtons::kOk});
    return;
  }
  SelectTableRow(*target.row);
}

void MainWindow::SelectTableRow(int tableRow) {
  const QModelIndex index = model_->index(tableRow - 1, 0);
  if (!index.isValid()) return;
  grid_->setCurrentIndex(index);
  grid_->scrollTo(index, QAbstractItemView::PositionAtTop);
  grid_->setFocus(Qt::OtherFocusReason);
}

void MainWindow::CheckDumpOnDisk() {
  // Never over a load, a dialog (the question itself included) or a run.
  if (busy_ || askingReload_ || QApplication::activeModalWidget() || QApplication::activePopupWidget()) return;
  if (!session_->DumpChangedOnDisk()) return;
  askingReload_ = true;
  statusBar()->showMessage(QString::fromUtf8("Rapportfilen har ändrats på disken."));
  const auto answer = services_.session.dialogs.ShowMessage(
      {"Rapportfilen " + session_->ReportDumps().text +
           " har ändrats på disken.\r\nVill du läsa in den igen? Ändringarna i förhandsgranskningen går då "
           "förlorade.",
       "Rapportfilen har ändrats", base::MessageIcon::kQuestion, base::MessageButtons::kYesNo});
  if (answer == base::MessageAnswer::kYes) {
    Apply([this] { session_->ReloadChangedDump(); });
    statusBar()->showMessage(QString::fromUtf8("Rapportfilen är inläst igen."));
  } else {
    session_->KeepDumpOnScreen();
  }
  askingReload_ = false;
}

void MainWindow::ShowGridArea() {
  const session::Session& ws = *session_;
  if (session::NoInstallationFound(ws)) {
    QStringList lines;
    for (const auto& line : session::NothingFoundLines(ws)) lines << Q(line);
    lblNothingFound_->setText(lines.join(QLatin1Char('\n')));
    gridArea_->setCurrentWidget(nothingFound_);
  } else {
    gridArea_->setCurrentWidget(grid_);
  }
}

void MainWindow::SetBusy(bool busy) {
  for (QToolBar* bar : bars_.toolbars) bar->setEnabled(!busy);
  menuBar()->setEnabled(!busy);
}

void MainWindow::SessionChanged(session::Changes what) {
  pending_ |= what;
  // Outside an operation (none runs then), show it at once; inside, Apply shows it at the end.
  if (!busy_) ShowSession();
}

void MainWindow::SetGenerationPointer(generate::MousePointer pointer) {
  const bool hourglass = pointer == generate::MousePointer::kHourglass;
  if (hourglass == hourglassFromGeneration_) return;
  hourglassFromGeneration_ = hourglass;
  if (hourglass) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
  RepaintPending();
}

bool MainWindow::RunBusy(const std::function<void()>& operation) {
  if (busy_) return false;
  busy_ = true;
  SetBusy(true);
  progressBar_->setRange(0, 0);
  progressBar_->setVisible(true);
  RepaintPending();
  // However the operation ends, the progress bar and the command bars come back.
  struct Ready {
    MainWindow& window;
    ~Ready() {
      window.progressBar_->setVisible(false);
      window.SetBusy(false);
      window.busy_ = false;
    }
  } ready{*this};
  operation();
  return true;
}

void MainWindow::Generate() {
  session::GenerationResult result;
  const bool ran = RunBusy([this, &result] {
    // However the run ends, the pointer comes back, before the progress bar goes.
    struct DefaultPointer {
      MainWindow& window;
      ~DefaultPointer() { window.SetGenerationPointer(generate::MousePointer::kDefault); }
    } pointer{*this};
    struct CancelButton {
      GenerationCancel& cancel;
      ~CancelButton() { cancel.End(); }
    } button{*cancel_};
    cancel_->Begin();
    result = session_->Generate();
  });
  if (!ran) return;
  // What the run was busy with is over; a stopped run has told the user what stays of it.
  statusBar()->clearMessage();
  if (result.cancelled) {
    if (!pending_.Empty()) ShowSession();
    return;
  }
  iniEditRequested_ = result.iniEditRequested;
  if (!pending_.Empty()) ShowSession();

  const std::string shown = result.ShownWorkbook();
  if (shown.empty()) return;
  const std::string host = session::ResolveWindowsPath(shown).make_preferred().string();
  QString status = QString::fromUtf8("Skapad: ") + Q(host);
  if (!result.BackupNotice().empty()) status += QStringLiteral("   ") + Q(result.BackupNotice());
  statusBar()->showMessage(status);
  const bool opened = services_.openWorkbook ? services_.openWorkbook(host)
                                             : QDesktopServices::openUrl(QUrl::fromLocalFile(Q(host)));
  // Told as the editing commands tell it: the workbook is written, only nothing shows it.
  if (!opened) session::TellNothingStarted(services_.session.dialogs, host);
}

}  // namespace sw::gui
