#include "session/session.h"

#include <algorithm>

#include "base/memory_reuse.h"
#include "base/strings.h"
#include "base/windows_path.h"
#include "discovery/refresh_files.h"
#include "discovery/step_failure.h"
#include "generate/page_count.h"
#include "generate/template_check.h"
#include "preview/export_fixup.h"
#include "preview/preview_controls.h"
#include "preview/preview_page_breaks.h"
#include "report/cleanup.h"
#include "report/preview_loader.h"
#include "session/integer_setting.h"
#include "session/report_dump_dialog.h"
#include "session/template_fields.h"
#include "session/template_ini_path.h"
#include "templates/current_report.h"
#include "templates/template_ini.h"
#include "templates/template_path.h"

namespace sw::session {
namespace {

constexpr int kRecentDumps = 8;
constexpr std::string_view kRecentDumpsSection = "RecentDumps";

}  // namespace

std::string GenerationResult::BackupNotice() const {
  return templateBackup.empty() ? std::string() : "Mallens tidigare innehåll finns kvar i " + templateBackup;
}

Session::Session(SessionServices services) : services_(std::move(services)) {}

void Session::AddObserver(SessionObserver& observer) {
  observers_.push_back(&observer);
}

void Session::RemoveObserver(SessionObserver& observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), &observer), observers_.end());
}

void Session::Notify(Changes what) {
  if (what.Empty()) return;
  for (auto* observer : observers_) observer->SessionChanged(what);
}

void Session::Log(std::string_view message) const {
  if (services_.startLog && services_.startLog->Enabled()) services_.startLog->WriteStartLog(message);
}

std::string Session::TemplatePath() const {
  if (rdsFile_.text.empty()) return {};
  std::string path = templateListFolder_;
  if (!path.empty() && path.back() != '\\' && path.back() != '/') path += '\\';
  return path + rdsFile_.text;
}

void Session::Tell(const std::vector<base::Notice>& notices) {
  for (const auto& notice : notices) services_.dialogs.ShowMessage(base::AsMessage(notice));
}

const templates::TemplateDescription* Session::CurrentDescription() const {
  if (definition_.IniPath.empty()) return nullptr;
  return &iniCache_.Get(definition_.IniPath);
}

// Generation's INI check says nothing here: the preview has already told what it finds.
std::optional<int> Session::PagesOfGeneration() const {
  const auto* description = CurrentDescription();
  if (!description || !description->validation.Accepted()) return std::nullopt;
  const auto& layout = description->validation.layout;
  return generate::CountPages(table_, layout.EndRow - layout.StartRow + 1, layout.Infinite);
}

PreviewSummary Session::Summary() const {
  PreviewSummary summary;
  summary.rows = std::max(table_.Rows() - 1, 0);
  for (int row = 1; row < table_.Rows(); ++row) {
    if (table_.ClassOf(row) == report::RowClass::kPlacementHead) ++summary.placements;
  }
  summary.pages = PagesOfGeneration();
  return summary;
}

void Session::Start(const std::function<void()>& windowSteps) {
  Load(windowSteps, true);
}

void Session::StartWithoutLoading() {
  Load({}, false);
}

void Session::Load(const std::function<void()>& windowSteps, bool choosing) {
  Log("Fetching data from VOLTARIS.INI");
  ReadCurrentReport();
  Log("Restore Mainform");
  if (windowSteps) windowSteps();
  recentDumps_.clear();
  for (int i = 1; i <= kRecentDumps; ++i) {
    std::string dump = services_.settings.GetAppSetting("Dump" + std::to_string(i), "", kRecentDumpsSection);
    if (!dump.empty()) recentDumps_.push_back(std::move(dump));
  }
  includeEmptyRows_ = IntegerSetting(services_.settings, "IncludeEmptyRows", "0") > 0;
  useSlashTwo_ = IntegerSetting(services_.settings, "UseSlashTwo", "1") > 0;
  Notify(Change::kCommands);
  Log("Refreshing files");
  RefreshFiles(choosing);
  sheetNo_.SetText(PadSheetNumber(sheetNo_.text, IntegerSetting(services_.settings, "PageNoLen", "1")));
  Notify(Change::kSheetNumber);
  Log("Mainform successfully loaded");
}

void Session::Close() {
  services_.settings.SaveAppSetting("LastVoltDmp", voltDump_.text);
  services_.settings.SaveAppSetting("LastRdsDir", rdsDir_.text);
}

void Session::Refresh() {
  refreshing_ = true;
  RefreshFiles();
  ReadCurrentReport();
  RefillTemplates();
  refreshing_ = false;
  PreviewVoltDump();
  FixExport(false);
}

void Session::RefreshFiles(bool choosing) {
  const discovery::DiscoverySources sources{.registry = services_.registry,
                                            .settings = services_.settings,
                                            .environment = services_.environment,
                                            .startLog = [this](std::string_view line) { Log(line); }};
  // A failed step is told before the window moves on to what the next one sets off.
  const auto directories = discovery::FillTemplateDirectories(sources, rdsDir_);
  Tell(directories.notices);
  if (directories) {
    Tell(discovery::RunStep([this, choosing] {
           if (choosing) {
             RefillTemplates();
           } else if (templates::ListTemplates(rdsDir_.text, currentReportId_, rdsFile_)) {
             templateListFolder_ = rdsDir_.text;
           }
         }).notices);
  }
  const auto dumps = discovery::FillReportDumps(sources, voltDump_);
  Tell(dumps.notices);
  if (dumps && choosing) Tell(discovery::RunStep([this] { DumpChanged(); }).notices);
  Notify(Change::kPickers);
}

void Session::ReadCurrentReport() {
  const auto report =
      templates::ReadCurrentReport(services_.environment, [this](std::string_view line) { Log(line); });
  currentReportId_ = report.reportId;
  sheetNo_.Clear();
  for (const auto& item : report.sheetNumberItems) sheetNo_.Add(item);
  sheetNo_.SelectIndex(0);
  Notify(Change::kSheetNumber);
}

void Session::RefillTemplates() {
  if (!templates::ListTemplates(rdsDir_.text, currentReportId_, rdsFile_)) return;
  templateListFolder_ = rdsDir_.text;
  // Paired even without a match: the empty name finds no INI file, so the field panel and IniPath are
  // cleared and the previous template cannot stay in use.
  PairTemplate();
  Notify(Change::kPickers);
  if (rdsFile_.selected >= 0) TemplateChanged();
}

void Session::PairTemplate() {
  fields_.Clear();
  const auto pairing = templates::FindIniForTemplate(templateListFolder_, rdsFile_.text);
  definition_.IniPath = pairing.iniPath;
  Tell(pairing.outcome.notices);
  if (const auto* description = CurrentDescription()) {
    const auto common = description->common;  // kept: telling may let the window read the file again
    Tell(common.outcome.notices);
    ApplyCommonFields(common, definition_, fields_, table_, services_.today);
  }
  ForgetEdits();
  Notify(Change::kFields | Change::kTable);
}

report::PreviewResult Session::PreviewVoltDump() {
  marksFolder_ = rdsDir_.text;
  marksFile_ = rdsFile_.text;
  const report::PreviewContext context{.dumpPath = voltDump_.text,
                                       .refreshing = refreshing_,
                                       .settings = services_.settings,
                                       .progress = services_.progress,
                                       .layoutColumns = services_.layoutColumns,
                                       .reloadTemplateLayout = [this] { ReloadPageLength(); },
                                       .showPageBreaks = [this] { DrawPageBreaks(); }};
  const FileStamp before = StampOf(base::ResolveWindowsPath(voltDump_.text));
  const auto loaded = report::PreviewVoltDump(table_, context);
  Tell(loaded.notices);
  WatchLoadedDump(loaded.status, before);
  if (loaded.status != report::PreviewResult::kSkipped) {
    ForgetEdits();
    Notify(Change::kTable | Change::kMarks);
  }
  return loaded.status;
}

void Session::ReloadPageLength() {
  const auto* description = CurrentDescription();
  if (!description) return;
  if (description->pageLength.infinite) definition_.Infinite = true;
  const auto notices = description->pageLength.outcome.notices;  // kept: telling may read the file again
  if (!services_.quietPageLayout) Tell(notices);
}

bool Session::DrawPageBreaks() {
  const auto* description = CurrentDescription();
  const auto* pageLength = description ? &description->pageLength : nullptr;
  const auto drawn =
      preview::ShowPageBreaks(table_, {marksFolder_, marksFile_, pageLength, &services_.settings});
  if (drawn.status != preview::PageBreaksStatus::kNoTemplate && pageLength && pageLength->infinite) {
    definition_.Infinite = true;
  }
  if (!services_.quietPageLayout) Tell(drawn.notices);
  return static_cast<bool>(drawn);
}

report::PreviewResult Session::ReloadPreview() {
  return PreviewVoltDump();
}

void Session::DumpChanged() {
  if (!refreshing_) PreviewVoltDump();
  services_.settings.SaveAppSetting("LastVoltDmp", voltDump_.text);
}

void Session::TemplateChanged() {
  definition_.Infinite = false;
  if (!refreshing_) PreviewVoltDump();
  singleSheetEnabled_ = !definition_.Infinite;
  Notify(Change::kCommands);
}

void Session::TemplateDirectoryChanged() {
  templateNamedByPath_ = false;
  RefillTemplates();
  Notify(Change::kPickers);
}

void Session::TypeTemplateDirectory(std::string text) {
  rdsDir_.SetText(std::move(text));
  TemplateDirectoryChanged();
}

void Session::ChooseTemplateDirectory(int index) {
  rdsDir_.SelectIndex(index);
  TemplateDirectoryChanged();
}

void Session::ChooseTemplate(int index) {
  if (index < 0 || index >= static_cast<int>(rdsFile_.items.size())) return;
  rdsFile_.selected = index;
  rdsFile_.text = rdsFile_.items[static_cast<std::size_t>(index)];
  Notify(Change::kPickers);
  // Paired before the reload, so the reload uses its layout and the headings are in place.
  PairTemplate();
  TemplateChanged();
}

void Session::UseTemplateWorkbook(std::string_view path) {
  const auto [folder, file] = templates::SplitTemplatePath(path);
  templateNamedByPath_ = true;
  rdsDir_.SetText(folder);
  templateListFolder_ = folder;
  rdsFile_.items = {file};
  rdsFile_.selected = 0;
  rdsFile_.text = file;
  rdsFile_.errorLabelVisible = false;
  Notify(Change::kPickers);
  PairTemplate();
  TemplateChanged();
}

void Session::TypeReportDump(std::string text) {
  voltDump_.SetText(std::move(text));
  Notify(Change::kPickers);
  DumpChanged();
  RememberDump();
}

void Session::ChooseReportDump(int index) {
  voltDump_.SelectIndex(index);
  Notify(Change::kPickers);
  DumpChanged();
  RememberDump();
}

void Session::OpenRecentDump(int index) {
  if (index < 0 || index >= static_cast<int>(recentDumps_.size())) return;
  TypeReportDump(recentDumps_[static_cast<std::size_t>(index)]);
}

void Session::RememberDump() {
  const std::string dump = voltDump_.text;
  if (base::TrimSpaces(dump).empty() || !base::WindowsFileExists(dump)) return;
  std::erase(recentDumps_, dump);
  recentDumps_.insert(recentDumps_.begin(), dump);
  if (recentDumps_.size() > static_cast<std::size_t>(kRecentDumps)) recentDumps_.resize(kRecentDumps);
  for (int i = 1; i <= kRecentDumps; ++i) {
    const std::string key = "Dump" + std::to_string(i);
    if (i <= static_cast<int>(recentDumps_.size())) {
      services_.settings.SaveAppSetting(key, recentDumps_[static_cast<std::size_t>(i - 1)],
                                        kRecentDumpsSection);
    } else {
      services_.settings.DeleteAppSetting(key, kRecentDumpsSection);
    }
  }
  Notify(Change::kPickers);
}

report::PreviewResult Session::OpenReportDump(std::string path) {
  voltDump_.SetText(std::move(path));
  Notify(Change::kPickers);
  return PreviewVoltDump();
}

report::PreviewResult Session::UseTemplateAndDump(std::string_view templatePath, std::string dumpPath) {
  const bool wasRefreshing = refreshing_;
  refreshing_ = true;
  UseTemplateWorkbook(templatePath);
  refreshing_ = wasRefreshing;
  return OpenReportDump(std::move(dumpPath));
}

void Session::ChooseDumpFile() {
  const auto chosen =
      session::ChooseReportDump(services_.dialogs, services_.settings, services_.programFolder);
  if (!chosen) return;
  TypeReportDump(*chosen);
}

std::array<preview::PopupCommand, 3> Session::PopupCommands(int row, int pointerY, int headingHeight) const {
  return preview::PreviewPopupCommands(table_, row, pointerY, headingHeight);
}

preview::PreviewAction Session::DoubleClickAction(int row) const {
  return preview::DoubleClickAction(table_, row);
}

void Session::DeletePlacement(int row) {
  RunPreviewAction(row, preview::PreviewAction::kDeletePlacement);
}

void Session::InsertManualBreak(int row) {
  RunPreviewAction(row, preview::PreviewAction::kInsertManualBreak);
}

void Session::RemoveManualBreak(int row) {
  RunPreviewAction(row, preview::PreviewAction::kRemoveManualBreak);
}

void Session::RunPreviewAction(int row, preview::PreviewAction action) {
  if (action == preview::PreviewAction::kNone) return;
  // Every edit adds or removes rows; one that does not has changed nothing worth a step.
  EditedState before = CurrentEdits(true);
  history_.CloseFieldStep();
  bool marksDrawn = false;
  preview::RunPreviewAction(table_, row, action, [this, &marksDrawn] {
    DrawPageBreaks();
    marksDrawn = true;
  });
  if (table_.Rows() != before.table->Rows()) history_.Record(std::move(before));
  Notify((marksDrawn ? Change::kTable | Change::kMarks : Changes(Change::kTable)) | Change::kCommands);
}

void Session::DeletePlacementAt(int row) {
  if (preview::DoubleClickAction(table_, row) != preview::PreviewAction::kDeletePlacement) return;
  RunPreviewAction(row, preview::PreviewAction::kDeletePlacement);
}

EditedState Session::CurrentEdits(bool withTable) const {
  EditedState state;
  if (withTable) state.table = table_;
  for (std::size_t i = 0; i < state.texts.size(); ++i) state.texts[i] = fields_.entries[i].text;
  return state;
}

void Session::TakeStep(bool undo) {
  const auto holdsTable = undo ? history_.UndoHoldsTable() : history_.RedoHoldsTable();
  if (!holdsTable) return;
  // The table changes hands instead of being copied: the step keeps the one shown until now.
  EditedState current = CurrentEdits(false);
  if (*holdsTable) current.table = std::move(table_);
  if (undo) {
    history_.Undo(current);
  } else {
    history_.Redo(current);
  }
  if (current.table) table_ = std::move(*current.table);
  for (std::size_t i = 0; i < current.texts.size(); ++i)
    fields_.entries[i].text = std::move(current.texts[i]);
  Notify(*holdsTable ? Change::kTable | Change::kMarks | Change::kFields | Change::kCommands
                     : Change::kFields | Change::kCommands);
}

void Session::Undo() {
  TakeStep(true);
}

void Session::Redo() {
  TakeStep(false);
}

void Session::ForgetEdits() {
  const bool had = history_.CanUndo() || history_.CanRedo();
  history_.Clear();
  if (had) Notify(Change::kCommands);
}

bool Session::FixExport(bool force) {
  if (!preview::ExportRepairOffered(force, currentReportId_, services_.environment)) return false;
  base::Message question = base::AsMessage(preview::ExportRepairQuestion());
  question.buttons = base::MessageButtons::kYesNo;
  if (services_.dialogs.ShowMessage(question) != base::MessageAnswer::kYes) return false;
  preview::InsertLeadingColumn(table_);
  // The template check after the repair lists, matches and pairs again, so the headings and the field
  // panel follow the INI file; choosing the template again would reload the dump and undo the repair.
  if (templateNamedByPath_) {
    PairTemplate();
  } else if (templates::ListTemplates(rdsDir_.text, currentReportId_, rdsFile_)) {
    templateListFolder_ = rdsDir_.text;
    PairTemplate();
  }
  ForgetEdits();
  Notify(Change::kTable | Change::kPickers);
  return true;
}

bool Session::CheckTemplate(std::string_view workbookPath,
                            const std::function<void(std::string_view)>& warn) {
  // Pairing goes by name alone; generation also needs the workbook itself.
  if (!base::WindowsFileExists(workbookPath)) {
    services_.dialogs.ShowMessage({"Hittar ej filen " + std::string(workbookPath) + ".", "Fel",
                                   base::MessageIcon::kInformation, base::MessageButtons::kOk});
    return false;
  }
  UseTemplateWorkbook(workbookPath);
  const auto* description = CurrentDescription();
  if (!description) return false;
  const auto validation = description->validation;  // kept: telling may let the window read the file again
  Tell(validation.outcome.notices);
  validation.ApplyTo(definition_);
  if (!validation.Accepted() || definition_.IniError) return false;
  if (warn) {
    for (const auto& warning : generate::PageLayoutWarnings(definition_)) warn(warning);
  }
  if (const std::string refusal = generate::RowsAboveTheSheetRefusal(definition_); !refusal.empty()) {
    services_.dialogs.ShowMessage(
        {refusal, "Fel", base::MessageIcon::kExclamation, base::MessageButtons::kOk});
    return false;
  }
  const auto opened = generate::OpenTemplateAsGenerationWould(std::string(workbookPath), definition_);
  Tell(opened.notices);
  return static_cast<bool>(opened);
}

void Session::ShowPageBreaks() {
  marksFolder_ = rdsDir_.text;
  marksFile_ = rdsFile_.text;
  if (DrawPageBreaks()) {
    ForgetEdits();
    Notify(Change::kMarks);
  }
}

void Session::SetFieldText(int index, std::string text) {
  if (index < 0 || index >= templates::kFieldCount) return;
  auto& entry = fields_.entries[static_cast<std::size_t>(index)];
  if (entry.text == text) return;
  // The first change since the box was entered makes the step; the rest of the typing joins it.
  if (history_.OpenField() != index) {
    history_.Record(CurrentEdits(false));
    history_.OpenFieldStep(index);
  }
  entry.text = std::move(text);
  Notify(Change::kFields | Change::kCommands);
}

void Session::CommitFieldText(int index) {
  if (index < 0 || index >= templates::kFieldCount) return;
  auto& entry = fields_.entries[static_cast<std::size_t>(index)];
  const std::string committed = preview::FieldTextOnCommit(entry.text, services_.today);
  const bool typing = history_.OpenField() == index;
  history_.CloseFieldStep();
  if (committed == entry.text) return;
  if (!typing) history_.Record(CurrentEdits(false));
  entry.text = committed;
  Notify(Change::kFields | Change::kCommands);
}

int Session::PressEnterInField(int index) {
  if (index < 0 || index >= templates::kFieldCount) return 0;
  const std::string before = fields_.entries[static_cast<std::size_t>(index)].text;
  const bool typing = history_.OpenField() == index;
  history_.CloseFieldStep();
  const int next = preview::PressEnterInField(fields_, index, services_.today);
  if (!typing && fields_.entries[static_cast<std::size_t>(index)].text != before) {
    EditedState previous = CurrentEdits(false);
    previous.texts[static_cast<std::size_t>(index)] = before;
    history_.Record(std::move(previous));
  }
  Notify(Change::kFields | Change::kCommands);
  return next;
}

void Session::ChooseSheetNumber(int index) {
  sheetNo_.SelectIndex(index);
  Notify(Change::kSheetNumber);
}

void Session::SetSheetNumber(std::string text) {
  sheetNo_.SetText(std::move(text));
  Notify(Change::kSheetNumber);
}

void Session::ToggleIncludeEmptyRows() {
  SetIncludeEmptyRows(!includeEmptyRows_);
}

void Session::ToggleUseSlashTwo() {
  SetUseSlashTwo(!useSlashTwo_);
}

void Session::SetIncludeEmptyRows(bool on) {
  includeEmptyRows_ = on;
  services_.settings.SaveAppSetting("IncludeEmptyRows", includeEmptyRows_ ? "1" : "0");
  Notify(Change::kCommands);
  if (includeEmptyRows_) {
    PreviewVoltDump();
  } else {
    report::CleanupEmptyRows(table_);
    ForgetEdits();
    Notify(Change::kTable);
  }
}

void Session::SetUseSlashTwo(bool on) {
  useSlashTwo_ = on;
  services_.settings.SaveAppSetting("UseSlashTwo", useSlashTwo_ ? "1" : "0");
  Notify(Change::kCommands);
  if (useSlashTwo_) {
    PreviewVoltDump();
  } else {
    report::CleanupSlashTwo(table_);
    ForgetEdits();
    Notify(Change::kTable);
  }
}

Options Session::LoadOptions() {
  const bool wasRefreshing = refreshing_;
  refreshing_ = true;
  const Options options = ReadOptions(services_.settings);
  refreshing_ = wasRefreshing;
  return options;
}

void Session::StoreOptions(const Options& options) {
  session::StoreOptions(services_.settings, options);
}

void Session::ToggleSingleSheet() {
  singleSheet_ = !singleSheet_;
  services_.settings.SaveAppSetting("SingleSheet", singleSheet_ ? "1" : "0");
  Notify(Change::kCommands);
}

void Session::UseSingleSheet(bool on) {
  singleSheet_ = on;
  Notify(Change::kCommands);
}

std::string Session::FirstSheetNumber() const {
  // Without the CAD system's INI file the first item is empty.
  if (sheetNo_.items.empty() || sheetNo_.items.front().empty()) return "1";
  return sheetNo_.items.front();
}

GenerationResult Session::Generate() {
  std::vector<std::string> fieldTexts;
  fieldTexts.reserve(fields_.entries.size());
  for (const auto& entry : fields_.entries) fieldTexts.push_back(entry.text);
  generate::GenerationInputs inputs{.table = table_,
                                    .sheetNumberText = sheetNo_.text,
                                    .templateFolder = templateListFolder_,
                                    .templateFile = rdsFile_.text,
                                    .dumpPickerText = voltDump_.text,
                                    .templateDirPickerText = rdsDir_.text,
                                    .fieldTexts = std::move(fieldTexts),
                                    .singleSheet = singleSheet_,
                                    .targetPath = txtExcelFilename_};

  generate::MessageSingleSheetWarning plainWarning(services_.dialogs);
  const std::optional<int> pages = PagesOfGeneration();
  generate::GenerationServices generation{.settings = services_.settings,
                                          .dialogs = services_.dialogs,
                                          .warning = services_.warning ? *services_.warning : plainWarning,
                                          .launcher = services_.launcher,
                                          .createExcel = services_.createExcel,
                                          .programFolder = services_.programFolder,
                                          .setMousePointer = services_.setMousePointer,
                                          .pageStarted =
                                              [this, &pages](int started) {
                                                if (services_.progress) services_.progress->Step(started);
                                                if (services_.generationStatus)
                                                  services_.generationStatus(GenerationStatusFor(
                                                      generate::GenerationPhase::kMakingPages, started, pages));
                                              },
                                          .findTopLevelWindow = {},
                                          .mayWriteIntoTemplate = services_.mayWriteIntoTemplate,
                                          .phaseChanged =
                                              [this, &pages](generate::GenerationPhase phase) {
                                                if (services_.generationStatus)
                                                  services_.generationStatus(GenerationStatusFor(phase, 0, pages));
                                              },
                                          .cancelRequested = services_.generationCancelRequested};
  generate::GenerationOutcome outcome;
  bool iniEditRequested = false;
  {
    generate::GenerationState state;
    // The progress bar counts the pages the run will make, as the status bar shows them.
    if (services_.progress) services_.progress->Begin(pages.value_or(0) + 1);
    outcome = generate::GenerateWorkbook(inputs, definition_, state, generation);
    if (services_.progress) services_.progress->End();
    iniEditRequested = state.iniEditRequested;
  }
  // The run's workbook is gone with its state; what it used goes back to the system.
  base::GiveFreedMemoryBack();

  sheetNo_.SetText(inputs.sheetNumberText);
  txtExcelFilename_ = inputs.targetPath;
  Notify(Change::kSheetNumber | Change::kWorkbook);

  GenerationResult result;
  result.completed = outcome.completed;
  result.cancelled = outcome.cancelled;
  result.templateBackup = outcome.templateBackup;
  result.iniEditRequested = iniEditRequested;
  for (const auto& written : outcome.savedFiles) result.workbooks.push_back(written);
  return result;
}

ExternalEditor& Session::Editor() {
  if (services_.externalEditor) return *services_.externalEditor;
  if (!platformEditor_) {
    platformEditor_ = CreatePlatformExternalEditor({.dialogs = services_.dialogs,
                                                    .launcher = services_.launcher,
                                                    .createExcel = services_.createExcel,
                                                    .progress = services_.progress});
  }
  return *platformEditor_;
}

std::optional<std::string> Session::ChosenTemplateForEditing() {
  if (base::TrimSpaces(rdsFile_.text).empty()) {
    services_.dialogs.ShowMessage({.text = "Ingen Excelmall vald.",
                                   .title = "Fel",
                                   .icon = base::MessageIcon::kExclamation,
                                   .buttons = base::MessageButtons::kOk});
    return std::nullopt;
  }
  // The directory picker's text, as the user sees it, not the folder the template list was read from.
  return rdsDir_.text + "\\" + rdsFile_.text;
}

void Session::EditTemplateWorkbook() {
  const auto path = ChosenTemplateForEditing();
  if (!path || !base::WindowsFileExists(*path)) return;
  Editor().OpenTemplateWorkbook(*path);
}

void Session::EditReportDump() {
  if (base::TrimSpaces(voltDump_.text).empty() || !base::WindowsFileExists(voltDump_.text)) return;
  Editor().OpenReportDump(voltDump_.text);
}

void Session::EditTemplateIni() {
  const auto path = ChosenTemplateForEditing();
  if (!path) return;
  const auto ini = TemplateIniPath(*path);
  if (!ini || !base::WindowsFileExists(*ini)) return;
  Editor().EditTemplateIni(*ini);
}

}  // namespace sw::session
