#pragma once
// frmMain: the program's one window, a thin view over the session. Every user action calls one
// session operation (src/session), after which the window shows the session again
// (ShowSession) when the session said something changed: the pickers, the field panel, the grid and
// the status bar hold nothing of their own.
#include <QMainWindow>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gui/busy_state.h"
#include "gui/command_bars.h"
#include "gui/command_dispatcher.h"
#include "gui/command_table.h"
#include "gui/warning_dialog.h"
#include "session/appearance_reset.h"
#include "session/front_end.h"
#include "session/session.h"

class QAction;
class QComboBox;
class QLabel;
class QProgressBar;
class QGroupBox;
class QToolBar;
class QStackedWidget;
class QTimer;

namespace sw::gui {

class FieldBox;
class PreviewGrid;
class GenerationCancel;
class ProgressBarLoadProgress;
class ReportTableModel;

// What the window is given: the session's services, of which the window fills in its own load
// progress, single-sheet warning, hourglass and column layout, and the two things only it does.
struct MainWindowServices {
  session::SessionServices session;
  // Opens the workbook a generation leaves showing (host path), false when no program could be started;
  // empty: the desktop's default application.
  std::function<bool(const std::string&)> openWorkbook;
  // Writes "Init.reg" into the settings when the standard look is restored; none: this platform's way.
  session::DefaultsMerger* defaultsMerger = nullptr;
};

class MainWindow final : public QMainWindow, private session::SessionObserver {
  Q_OBJECT
 public:
  // Builds the window and runs its load step (the start-up sequence); show() it afterwards.
  explicit MainWindow(MainWindowServices services, QWidget* parent = nullptr);
  ~MainWindow() override;

  session::Session& Session() { return *session_; }
  QAction* Command(int id) const;
  // Every command of the menus, toolbars and taken keys runs through here.
  CommandDispatcher& Dispatcher() { return dispatcher_; }

  // The current theme's number and its command-bar colour (0x00BBGGRR), the background the window's
  // frames and labels have and the dialogs are coloured with.
  int Theme() const { return theme_; }
  std::int32_t ThemeColour() const;
  // Stores `themeNumber` as "Theme", shows its look and checks exactly its entry.
  void ApplyTheme(int themeNumber);

  // The window closed to restore the standard look and is to be opened again from the settings.
  bool RestartRequested() const { return restartRequested_; }

  // Shows what the session holds now.
  void ShowSession();

 protected:
  void closeEvent(QCloseEvent* event) override;
  // A dump file dropped on the window is loaded as "Välj textfil..." loads the chosen one.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void BuildWidgets();
  QWidget* BuildTemplateDirectoryControl();
  void BuildCommands();
  // Every command id and its action, in one place.
  void ConnectCommands();
  void ConnectWidgets();
  void ShowTheme(int themeNumber);
  void ShowCommands();
  void ShowRecentDumps();
  void ToggleStandardToolbar();
  void ResetAppearance();
  // The remembered placement, kept on the screens there are; false when none is remembered.
  bool RestorePlacement();
  // Without a remembered placement: a size at which every toolbar button and twenty rows of the grid
  // show, centred on the screen.
  void PlaceAtFirstStart();
  QSize FirstStartSize();
  void SavePlacement();
  // Runs one session operation with the grid detached from the table, then shows the result.
  void Apply(const std::function<void()>& operation);
  void LayOutColumns();
  void ShowPopup(int tableRow, int pointerY, const QPoint& globalPos);
  void DoubleClickRow(int tableRow);
  void SwitchView(bool toFields);
  void UpdateGenerateEnabled();
  // Ctrl+F: the next placement whose name holds the text asked for; Ctrl+G: the first row of a page.
  void FindPlacement();
  void GoToPage();
  // Makes report row `tableRow` current and scrolls it into view.
  void SelectTableRow(int tableRow);
  // The dump on screen written again: told in the status bar, then the user chooses to load it again.
  void CheckDumpOnDisk();
  // The grid, or what was looked for when nothing of an installation was found.
  void ShowGridArea();
  // Runs a long operation as a generation runs: the command bars disabled and the progress bar shown
  // (moving when the operation reports its steps through the session's progress) until it ends, the
  // window repainted at each step. False when another one is running.
  bool RunBusy(const std::function<void()>& operation);
  void Generate();
  void SessionChanged(session::Changes what) override;
  void SetGenerationPointer(generate::MousePointer pointer);
  void SetBusy(bool busy);
  double TwipsPerPixel() const;

  MainWindowServices services_;
  std::unique_ptr<ProgressBarLoadProgress> progress_;
  StepPacer statusPacer_;  // a run's "Skapar sidor …" texts
  std::unique_ptr<session::Session> session_;
  session::Changes pending_;       // what the session changed since the window last showed it
  bool iniEditRequested_ = false;  // the last run opened the INI file for editing
  DialogSingleSheetWarning warning_;
  CommandDispatcher dispatcher_;
  CommandBars bars_;
  int theme_ = 2;
  std::optional<std::string> defaultsFile_;  // set when closing to restore the standard look
  bool restartRequested_ = false;

  QComboBox* cboRdsDir_ = nullptr;
  QComboBox* cboRdsFile_ = nullptr;
  QLabel* lblError_ = nullptr;
  QComboBox* cboVoltDump_ = nullptr;
  QComboBox* cboSheetNo_ = nullptr;
  QGroupBox* fraFiles_ = nullptr;
  QGroupBox* fraFields_ = nullptr;
  std::array<QLabel*, 30> lblField_{};
  std::array<FieldBox*, 30> txtField_{};
  PreviewGrid* grid_ = nullptr;
  QStackedWidget* gridArea_ = nullptr;
  QWidget* nothingFound_ = nullptr;
  QLabel* lblNothingFound_ = nullptr;
  QTimer* dumpWatch_ = nullptr;
  bool askingReload_ = false;
  QString lastSearch_;             // the placement text last searched for
  bool iniBlocksGenerate_ = false;  // the template's INI file is to be edited before a run
  ReportTableModel* model_ = nullptr;
  QProgressBar* progressBar_ = nullptr;
  GenerationCancel* cancel_ = nullptr;  // the "Avbryt" button beside the progress bar
  QLabel* summary_ = nullptr;
  std::vector<std::string> recentShown_;  // the dumps the "Senaste textfiler" menu lists
  bool fieldsShown_ = false;
  bool busy_ = false;
  bool columnsNeedLayout_ = false;
  bool columnsFitted_ = false;      // the widths are the load's fit, not the user's own
  bool layingOutColumns_ = false;   // the window itself is setting widths
  bool hourglassFromGeneration_ = false;
};

}  // namespace sw::gui
