#include "app/workspace/workspace_actions.h"

#include "generate/page_count.h"
#include "template/preview_controls.h"
#include "template/preview_page_breaks.h"
#include "template/report_dump_dialog.h"
#include "template/template_ini.h"

namespace sw::workspace {
namespace {

// The status bar's page count re-reads the INI file; what is wrong with it has been told already.
class SilentDialogs final : public base::Dialogs {
 public:
  base::MessageAnswer ShowMessage(const base::Message&) override { return base::MessageAnswer::kOk; }
  std::optional<std::string> ShowFileDialog(const base::FileDialogRequest&) override { return std::nullopt; }
};

}  // namespace

void ShowPageBreaks(Workspace& window, base::Dialogs& dialogs, app::Settings& settings) {
  templ::PreviewPageLayout layout(window.definition, dialogs, settings);
  layout.SetTemplate(window.rdsDir.text, window.rdsFile.text);
  layout.ShowPageBreaks(window.table);
}

void RunPreviewEdit(Workspace& window, int row, templ::PreviewAction action, base::Dialogs& dialogs,
                    app::Settings& settings) {
  templ::RunPreviewAction(window.table, row, action, [&] { ShowPageBreaks(window, dialogs, settings); });
}

std::string CommitFieldText(Workspace& window, int index, const templ::ShortDateSource& today) {
  if (index < 0 || index >= templ::kFieldCount) return {};
  auto& entry = window.fields.entries[static_cast<std::size_t>(index)];
  entry.text = templ::FieldTextOnCommit(entry.text, today);
  return entry.text;
}

bool ChooseReportDumpFile(Workspace& window, base::Dialogs& dialogs, app::Settings& settings,
                          std::string_view programFolder) {
  const auto chosen = templ::ChooseReportDump(dialogs, settings, programFolder);
  if (!chosen) return false;
  // Putting the path in the picker is its change, which stores and loads it: one load, not two.
  window.TypeReportDump(*chosen);
  return true;
}

PreviewSummary SummarizePreview(const Workspace& window) {
  PreviewSummary summary;
  summary.rows = window.table.Rows() - 1;
  for (int row = 1; row < window.table.Rows(); ++row) {
    if (window.table.ClassOf(row) == report::RowClass::kPlacementHead) ++summary.placements;
  }
  if (window.rdsFile.text.empty() || window.definition.IniPath.empty()) return summary;
  templ::TemplateDefinition definition = window.definition;
  SilentDialogs silent;
  if (!templ::ValidateTemplateIni(definition.IniPath, definition, silent).Accepted()) return summary;
  summary.pages =
      gen::CountPages(window.table, definition.EndRow - definition.StartRow + 1, definition.Infinite);
  return summary;
}

std::string WorkbookLeftOpen(const gen::GenerationOutcome& outcome, bool singleSheet,
                             std::string_view target) {
  if (outcome.savedFiles.empty()) return {};
  return singleSheet ? outcome.savedFiles.back() : std::string(target);
}

}  // namespace sw::workspace
