#include "app/workspace/workspace.h"

#include "app/workspace/integer_setting.h"
#include "cadenv/discovery/refresh_files.h"
#include "report/cleanup.h"
#include "report/preview_loader.h"
#include "template/current_report.h"
#include "template/export_fixup.h"
#include "template/template_ini.h"

namespace sw::workspace {

Workspace::Workspace(WorkspaceServices services)
    : services_(std::move(services)), layout_(definition, services_.dialogs, services_.settings) {}

void Workspace::Log(std::string_view message) const {
  if (services_.startLog && services_.startLog->Enabled()) services_.startLog->WriteStartLog(message);
}

void Workspace::Load(const std::function<void()>& windowSteps) {
  Log("Fetching data from VOLTARIS.INI");
  ReadCurrentReport();
  Log("Restore Mainform");
  if (windowSteps) windowSteps();
  includeEmptyRows = IntegerSetting(services_.settings, "IncludeEmptyRows", "0") > 0;
  useSlashTwo = IntegerSetting(services_.settings, "UseSlashTwo", "1") > 0;
  Log("Refreshing files");
  RefreshFiles();
  sheetNo.SetText(PadSheetNumber(sheetNo.text, IntegerSetting(services_.settings, "PageNoLen", "1")));
  Log("Mainform successfully loaded");
}

void Workspace::SaveOnClose() {
  services_.settings.SaveAppSetting("LastVoltDmp", voltDump.text);
  services_.settings.SaveAppSetting("LastRdsDir", rdsDir.text);
}

void Workspace::RefreshSequence() {
  refreshing = true;
  RefreshFiles();
  ReadCurrentReport();
  RefillTemplates();
  refreshing = false;
  PreviewVoltDump();
  AdjustExportFile(false);
}

void Workspace::RefreshFiles() {
  const discovery::DiscoverySources sources{.registry = services_.registry,
                                            .settings = services_.settings,
                                            .environment = services_.environment,
                                            .dialogs = services_.dialogs,
                                            .startLog = [this](std::string_view line) { Log(line); }};
  const discovery::RefreshHooks hooks{.refreshTemplates = [this] { RefillTemplates(); },
                                      .dumpChosen = [this] { cboVoltDump_Change(); }};
  discovery::RefreshFiles(sources, rdsDir, voltDump, hooks);
}

void Workspace::ReadCurrentReport() {
  const auto report =
      templ::ReadCurrentReport(services_.environment, [this](std::string_view line) { Log(line); });
  currentReportId = report.reportId;
  sheetNo.Clear();
  for (const auto& item : report.sheetNumberItems) sheetNo.Add(item);
  sheetNo.SelectIndex(0);
}

void Workspace::RefillTemplates() {
  if (!templ::ListTemplates(rdsDir.text, currentReportId, rdsFile)) return;
  templateListFolder = rdsDir.text;
  // Paired even without a match: the empty name finds no INI file, so the field panel and IniPath are
  // cleared and the previous template cannot stay in use.
  PairTemplate();
  if (rdsFile.selected >= 0) cboRdsFile_Change();
}

void Workspace::PairTemplate() {
  templ::FindIniForTemplate(templateListFolder, rdsFile.text, definition, fields, table, services_.dialogs);
}

void Workspace::PreviewVoltDump() {
  layout_.SetTemplate(rdsDir.text, rdsFile.text);
  const report::PreviewContext context{.dumpPath = voltDump.text,
                                       .refreshing = refreshing,
                                       .settings = services_.settings,
                                       .dialogs = services_.dialogs,
                                       .progress = services_.progress,
                                       .layoutColumns = services_.layoutColumns,
                                       .reloadTemplateLayout = [this] { layout_.ReloadLayout(); },
                                       .showPageBreaks = [this] { layout_.ShowPageBreaks(table); }};
  report::PreviewVoltDump(table, context);
}

bool Workspace::AdjustExportFile(bool force) {
  // The template check after the repair re-lists, re-matches and pairs the INI file again, so the
  // headings the inserted column pushed aside are the INI's once more; choosing the template again
  // would reload the dump and undo the repair just made.
  return templ::AdjustExportFile(force, currentReportId, services_.environment, services_.dialogs, table,
                                 [this] {
                                   if (!templ::ListTemplates(rdsDir.text, currentReportId, rdsFile)) return;
                                   templateListFolder = rdsDir.text;
                                   PairTemplate();
                                 });
}

void Workspace::cboRdsDir_Change() {
  RefillTemplates();
}

void Workspace::cboVoltDump_Change() {
  if (!refreshing) PreviewVoltDump();
  services_.settings.SaveAppSetting("LastVoltDmp", voltDump.text);
}

void Workspace::cboRdsFile_Change() {
  definition.Infinite = false;
  if (!refreshing) PreviewVoltDump();
  singleSheetEnabled = !definition.Infinite;
}

void Workspace::TypeTemplateDirectory(std::string text) {
  rdsDir.SetText(std::move(text));
  cboRdsDir_Change();
}

void Workspace::ChooseTemplateDirectory(int index) {
  rdsDir.SelectIndex(index);
  cboRdsDir_Click();
}

void Workspace::TypeReportDump(std::string text) {
  voltDump.SetText(std::move(text));
  cboVoltDump_Change();
}

void Workspace::ChooseReportDump(int index) {
  voltDump.SelectIndex(index);
  cboVoltDump_Click();
}

void Workspace::ChooseTemplate(int index) {
  if (index < 0 || index >= static_cast<int>(rdsFile.items.size())) return;
  rdsFile.selected = index;
  rdsFile.text = rdsFile.items[static_cast<std::size_t>(index)];
  PairTemplate();
  cboRdsFile_Click();
}

void Workspace::ToggleIncludeEmptyRows() {
  includeEmptyRows = !includeEmptyRows;
  services_.settings.SaveAppSetting("IncludeEmptyRows", includeEmptyRows ? "1" : "0");
  if (includeEmptyRows) {
    PreviewVoltDump();
  } else {
    report::CleanupEmptyRows(table);
  }
}

void Workspace::ToggleUseSlashTwo() {
  useSlashTwo = !useSlashTwo;
  services_.settings.SaveAppSetting("UseSlashTwo", useSlashTwo ? "1" : "0");
  if (useSlashTwo) {
    PreviewVoltDump();
  } else {
    report::CleanupSlashTwo(table);
  }
}

void Workspace::ToggleSingleSheet() {
  singleSheet = !singleSheet;
  services_.settings.SaveAppSetting("SingleSheet", singleSheet ? "1" : "0");
}

}  // namespace sw::workspace
