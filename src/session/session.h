#pragma once
// The program without widgets: everything the main window holds for its lifetime and every user
// intent as an operation. The window and the command line are views over one Session; they read its
// state through the const accessors, call one operation per user action, and hear what changed
// through SessionObserver, so neither polls nor holds logic of its own.
//
// The single-sheet command (707): its checked state is the single-sheet toggle; its enabled state
// follows the current template's dynamic page length. Choosing a template clears that flag, the
// preview load re-reads the template's layout (which sets it again for an INFINITE template) and 707
// is then enabled only for a template of fixed page length: single-sheet files are made page by page,
// and a dynamic-length template has no pages.
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dialogs.h"
#include "base/environment.h"
#include "base/outcome.h"
#include "base/process_launcher.h"
#include "cadenv/registry.h"
#include "discovery/combo_picker.h"
#include "generate/generate_workbook.h"
#include "generate/single_sheet_warning.h"
#include "preview/preview_edits.h"
#include "report/dump_reader.h"
#include "report/preview_loader.h"
#include "report/report_table.h"
#include "session/dump_watch.h"
#include "session/edit_history.h"
#include "session/external_editor.h"
#include "session/generation_status.h"
#include "session/options.h"
#include "session/session_observer.h"
#include "settings/settings.h"
#include "settings/start_log.h"
#include "templates/field_panel.h"
#include "templates/short_date.h"
#include "templates/template_definition.h"
#include "templates/template_ini_cache.h"
#include "templates/template_list.h"

namespace sw::session {

struct SessionServices {
  cadenv::Registry& registry;
  settings::Settings& settings;
  const base::Environment& environment;
  base::Dialogs& dialogs;
  base::ProcessLauncher& launcher;                  // opens a faulty INI file for editing
  const settings::StartLog* startLog = nullptr;     // lines are written only while it is enabled
  report::LoadProgress* progress = nullptr;         // busy state and progress bar of a load
  generate::SingleSheetWarning* warning = nullptr;  // none: the warning as a plain OK/Avbryt message
  generate::ApplicationFactory createExcel;         // none: the built-in workbook engine
  std::string programFolder;                        // the target dialog's folder until "ResultPath" exists
  templates::ShortDateSource today = templates::TodayShortDate;
  std::function<void(generate::MousePointer)> setMousePointer;  // hourglass during generation
  std::function<void()> layoutColumns;                          // column widths after a load (window only)
  // The page layout's notices when a load draws the marks are not told. The command line's generate
  // asks for this: generation's own INI check tells the same problems once.
  bool quietPageLayout = false;
  // Whether a run may write into the template itself, as single-sheet mode does with a dynamic-length
  // template (after keeping a copy). The command line has no toggle a template can switch off, so
  // there such a run is refused instead.
  bool mayWriteIntoTemplate = true;
  // Where the external editing commands hand their files; none: this platform's way.
  ExternalEditor* externalEditor = nullptr;
  // Told what a generation is busy with as it moves on (window only). Optional.
  std::function<void(const GenerationStatus&)> generationStatus;
  // Asked now and then while a generation runs: true stops it (window only). Optional.
  std::function<bool()> generationCancelRequested;
};

// What the status bar counts for the user.
struct PreviewSummary {
  int rows = 0;              // report rows below the heading
  int placements = 0;        // placement heads
  std::optional<int> pages;  // the pages generation would make; nothing without a usable template
};

// What one generation did, for the front end to show; the user has been told the rest as it happened.
struct GenerationResult {
  // The run got to its end with every file it was to write. A run that told of a page or file it
  // lost, or that stopped on a message or a choice, did not.
  bool completed = false;
  bool cancelled = false;  // the user stopped the run and has been told what stays of it
  std::vector<std::string> workbooks;  // every workbook written, as the program names them
  std::string templateBackup;  // where the template's previous content was kept, when the run wrote into it
  bool iniEditRequested =
      false;  // the template's INI file was opened for editing: fix it before the next run
  // The workbook Excel is left showing: the target, or in single-sheet mode the last page file.
  std::string ShownWorkbook() const { return workbooks.empty() ? std::string() : workbooks.back(); }
  // Nothing the user asked for was lost.
  bool Succeeded() const { return completed; }
  // What the status bar tells after the run besides the workbook: where the template was kept.
  std::string BackupNotice() const;
};

class Session {
 public:
  explicit Session(SessionServices services);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void AddObserver(SessionObserver& observer);
  void RemoveObserver(SessionObserver& observer);

  // --- State, as the window shows it.
  const discovery::ComboPicker& TemplateDirectories() const { return rdsDir_; }  // cboRdsDir
  const templates::TemplatePicker& Templates() const { return rdsFile_; }        // cboRdsFile, lblError
  const std::string& TemplateListFolder() const { return templateListFolder_; }
  const discovery::ComboPicker& ReportDumps() const { return voltDump_; }  // cboVoltDump
  const discovery::ComboPicker& SheetNumbers() const { return sheetNo_; }  // cboSheetNo
  const templates::FieldPanel& Fields() const { return fields_; }          // lblField / txtField
  const report::ReportTable& Table() const { return table_; }              // fgPreView
  const templates::TemplateDefinition& Definition() const { return definition_; }
  const std::string& CurrentReportId() const { return currentReportId_; }
  const std::string& LastWorkbook() const { return txtExcelFilename_; }
  bool IncludeEmptyRows() const { return includeEmptyRows_; }  // command 305 checked
  bool UseSlashTwo() const { return useSlashTwo_; }            // command 306 checked
  bool SingleSheet() const { return singleSheet_; }            // command 707 checked
  bool SingleSheetEnabled() const { return singleSheetEnabled_; }
  bool Refreshing() const { return refreshing_; }
  // The template's path as the program joins it ("<folder>\<file>"), "" without a template.
  std::string TemplatePath() const;
  // The pages generation would make now, with the page length generation reads; nothing without a
  // template or when generation's INI check would stop it.
  std::optional<int> PagesOfGeneration() const;
  PreviewSummary Summary() const;
  // How many times the template's INI file has been read: it is read once and kept while the file
  // stays the same (for tests).
  int TemplateIniReads() const { return iniCache_.Reads(); }

  // --- Start and close.
  // The load step: the CAD INI file, then `windowSteps` (placement, theme, command bars; run after
  // "Restore Mainform" is logged), the toggles 305 and 306 from the settings, RefreshFiles, and the
  // sheet number padded to "PageNoLen" characters.
  void Start(const std::function<void()>& windowSteps = {});
  // The load step for a command that names what it works on afterwards (the command line's generate
  // without --dump or --template): Start's steps and start-log lines, but the template list is only
  // matched, not paired, and the chosen dump is neither loaded nor remembered, so that the command
  // pairs and loads what it uses once.
  void StartWithoutLoading();
  // The close-time saves of the last choices: "LastVoltDmp", then "LastRdsDir".
  void Close();

  // --- Pickers.
  void TypeTemplateDirectory(std::string text);
  void ChooseTemplateDirectory(int index);
  void ChooseTemplate(int index);
  // A template named by path, as the command line gives it: its folder stands in the directory
  // picker (without listing it) and the workbook is paired as if chosen. Until another directory is
  // chosen the template stays as named: the export repair's template check pairs it again instead of
  // listing the folder, which would pick the current report's template.
  void UseTemplateWorkbook(std::string_view path);
  // The checks generation makes on a template named by path before it writes anything: the workbook
  // exists, its INI file pairs and passes generation's INI check, and the workbook opens with both
  // sheets [Tabs] names. Problems are told through the dialogs, layouts that are hardly what was meant
  // through `warn`; the template stays in use. Whether generation would go on.
  bool CheckTemplate(std::string_view workbookPath, const std::function<void(std::string_view)>& warn);
  void TypeReportDump(std::string text);
  void ChooseReportDump(int index);
  // A dump named by path, as the command line gives it: shown in the dump picker and loaded, but not
  // remembered as the last dump.
  report::PreviewResult OpenReportDump(std::string path);
  // The command line's two inputs, each named by path: the template as UseTemplateWorkbook takes it,
  // then the dump as OpenReportDump takes it. Whatever stood in the dump picker is not loaded for the
  // template first, so the dump is read once, with the template's layout.
  report::PreviewResult UseTemplateAndDump(std::string_view templatePath, std::string dumpPath);
  // Command 706 "Välj textfil...": the open dialog; the chosen file stands in the dump picker.
  void ChooseDumpFile();
  // The dumps the user last chose in the dump picker, by "Välj textfil...", from this list or by
  // dropping them on the window, the newest first: at most eight, kept in the settings ("RecentDumps",
  // "Dump1".."Dump8"). Only dumps that were there when chosen are listed.
  const std::vector<std::string>& RecentDumps() const { return recentDumps_; }
  // Loads recent dump `index` as if typed into the dump picker.
  void OpenRecentDump(int index);
  // Command 704: RefreshFiles, the current report and the template list with the refreshing flag up,
  // then the preview and the export-file check.
  void Refresh();
  // Loads the dump on screen again (nothing while refreshing); the command line's exit status needs
  // whether it could be read.
  report::PreviewResult ReloadPreview();
  // The dump on screen was written again since it was loaded (its size, time or file changed), and
  // the user has not yet chosen to keep the screen over that version (session/dump_watch.cpp).
  bool DumpChangedOnDisk() const;
  // The user keeps the preview and its edits: the file as it is now is not told of again.
  void KeepDumpOnScreen();
  // The changed dump loaded again as "Uppdatera" loads it, with a new history of edits.
  void ReloadChangedDump();

  // --- The preview grid.
  std::array<preview::PopupCommand, 3> PopupCommands(int row, int pointerY, int headingHeight) const;
  preview::PreviewAction DoubleClickAction(int row) const;
  void DeletePlacement(int row);
  void InsertManualBreak(int row);
  void RemoveManualBreak(int row);
  void RunPreviewAction(int row, preview::PreviewAction action);
  // The Delete key on the grid: deletes the placement whose head is `row`, as the popup's "Radera
  // placering" does; nothing on any other row.
  void DeletePlacementAt(int row);

  // --- Undo and redo of the preview edits (placements deleted, manual breaks inserted or removed,
  // title-block texts) since the dump was loaded. Loading a dump, pairing a template, the report
  // clean-ups, the export repair and a redraw of the marks start a new history: the steps would no
  // longer fit the table.
  bool CanUndo() const { return history_.CanUndo(); }
  bool CanRedo() const { return history_.CanRedo(); }
  void Undo();
  void Redo();
  // The export-file repair of the outer connection table; offered without `force` only for that report.
  bool FixExport(bool force);
  // The page-break marks drawn again (command 308 after the repair, the options dialog's OK).
  void ShowPageBreaks();

  // --- Field panel and sheet number.
  void SetFieldText(int index, std::string text);
  // Focus leaves box `index` or Enter is pressed in it: "." becomes today's date.
  void CommitFieldText(int index);
  // Enter in box `index`: commits it; the box that gets the focus.
  int PressEnterInField(int index);
  void SetSheetNumber(std::string text);
  void ChooseSheetNumber(int index);

  // --- Toggles 305 ("IncludeEmptyRows"), 306 ("UseSlashTwo") and 707 ("SingleSheet"): invert, store
  // "1"/"0", and for 305/306 reload the dump when switched on or tidy the table when switched off.
  void ToggleIncludeEmptyRows();
  void ToggleUseSlashTwo();
  // The same with the state given, as the options dialog's two report boxes set it when clicked.
  void SetIncludeEmptyRows(bool on);
  void SetUseSlashTwo(bool on);
  void ToggleSingleSheet();
  // Single-sheet mode for this run only, nothing stored (the command line's --single-sheet).
  void UseSingleSheet(bool on);

  // --- The options dialog (command 304). Its boxes are read with the refreshing flag up, so nothing
  // loading them can reload the preview; OK stores the four settings (the two report boxes have
  // already acted when clicked), after which the dialog redraws the marks with ShowPageBreaks.
  Options LoadOptions();
  void StoreOptions(const Options& options);

  // The CAD system's current report read again: its identifier and the sheet-number items.
  void ReadCurrentReport();
  // The first sheet number the current report offers, "1" when there is none.
  std::string FirstSheetNumber() const;

  // --- Command 403 "Generera Excel-dokument": the target comes from the dialogs interface's save
  // dialog (the command line answers it with --out). The sheet number and the last workbook's path
  // take what the run wrote back.
  GenerationResult Generate();

  // --- External editing: the outside program is started and left to the user.
  // Command 303: the template workbook ("<template folder>\<template>") opened for changing. No template
  // chosen: "Ingen Excelmall vald."; a template file that is not there: nothing, without a message.
  void EditTemplateWorkbook();
  // Command 307: the report dump opened as a spreadsheet. No dump, or none of that name: nothing.
  void EditReportDump();
  // Command 302: the template's INI file (TemplateIniPath) opened for editing. No template chosen: the
  // same message as 303; no such INI file: nothing. The INI file is not read again afterwards.
  void EditTemplateIni();

 private:
  void Log(std::string_view message) const;
  void Notify(Changes what);
  // `choosing` false: the template list is matched, nothing is paired or loaded.
  void RefreshFiles(bool choosing = true);
  void Load(const std::function<void()>& windowSteps, bool choosing);
  void RefillTemplates();
  void PairTemplate();
  void DumpChanged();
  void RememberDump();
  void TemplateChanged();
  void TemplateDirectoryChanged();
  report::PreviewResult PreviewVoltDump();
  // Tells the user, in order.
  void Tell(const std::vector<base::Notice>& notices);
  // The paired INI file as read last, or read again when it changed; nothing without one.
  const templates::TemplateDescription* CurrentDescription() const;
  // The preview's reading of the page length at the end of a load, as if the INI file were read again.
  void ReloadPageLength();
  // The page-break marks drawn for the template of the last load or redraw with the current page
  // length; whether the reset ran.
  bool DrawPageBreaks();
  // After a load: the dump is watched from the state it had before it was read.
  void WatchLoadedDump(report::PreviewResult result, const FileStamp& before);
  // The template path the editing commands use, or nothing (after telling the user) without a template.
  std::optional<std::string> ChosenTemplateForEditing();
  ExternalEditor& Editor();
  // The texts, and the table when `withTable`.
  EditedState CurrentEdits(bool withTable) const;
  // Undo or Redo of the history, on the table and the texts the window shows.
  void TakeStep(bool undo);
  // Starts a new history, telling the window when there was one.
  void ForgetEdits();

  SessionServices services_;
  std::unique_ptr<ExternalEditor> platformEditor_;
  std::vector<SessionObserver*> observers_;

  discovery::ComboPicker rdsDir_;
  templates::TemplatePicker rdsFile_;
  std::string templateListFolder_;    // the folder the template list shows (FileXls.Path)
  bool templateNamedByPath_ = false;  // UseTemplateWorkbook: the folder was not listed
  discovery::ComboPicker voltDump_;
  discovery::ComboPicker sheetNo_;
  templates::FieldPanel fields_;
  std::string txtExcelFilename_;
  bool includeEmptyRows_ = false;
  bool useSlashTwo_ = false;
  bool singleSheet_ = false;  // stored, by design not restored at start
  bool singleSheetEnabled_ = true;
  bool refreshing_ = false;
  std::string currentReportId_;
  templates::TemplateDefinition definition_;
  report::ReportTable table_;
  mutable templates::TemplateIniCache iniCache_;
  // The template the page-break marks were last drawn for, as the pickers named it at the last load or
  // redraw; an edit of the preview draws them for the same.
  std::string marksFolder_;
  std::string marksFile_;
  EditHistory history_;
  std::vector<std::string> recentDumps_;
  DumpWatch dumpWatch_;
};

}  // namespace sw::session
