#pragma once
// The main window's state and behaviour without widgets: what the pickers, the sheet-number box, the
// field panel and the toggles show, and what the window does when they change. The GUI is a thin view
// that mirrors these members and forwards the user's actions to the operations; the command line and
// the tests drive the same object headless.
//
// Command 707 ("Enkelblad"): its checked state is the single-sheet toggle; its enabled state follows
// the marker flag, which is TemplateDefinition::Infinite, the current template's dynamic page length.
// Choosing a template clears the flag, the preview load re-reads the template's layout (which sets it
// again for an INFINITE template) and 707 is then enabled only for a template of fixed page length:
// single-sheet files are made page by page, and a dynamic-length template has no pages.
#include <functional>
#include <string>

#include "app/settings.h"
#include "app/start_log.h"
#include "base/dialogs.h"
#include "base/environment.h"
#include "cadenv/discovery/combo_picker.h"
#include "cadenv/registry.h"
#include "report/dump_reader.h"
#include "report/report_table.h"
#include "template/field_panel.h"
#include "template/preview_page_breaks.h"
#include "template/template_definition.h"
#include "template/template_list.h"

namespace sw::workspace {

struct WorkspaceServices {
  cadenv::Registry& registry;
  app::Settings& settings;
  const base::Environment& environment;
  base::Dialogs& dialogs;
  const app::StartLog* startLog = nullptr;   // lines are written only while it is enabled
  report::LoadProgress* progress = nullptr;  // busy state and progress bar of a load
  std::function<void()> layoutColumns;       // the grid's column widths after a load (GUI only)
};

class Workspace {
 public:
  explicit Workspace(WorkspaceServices services);
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  // What the window shows.
  discovery::ComboPicker rdsDir;    // cboRdsDir: template directories
  templ::TemplatePicker rdsFile;    // cboRdsFile with the error label lblError
  std::string templateListFolder;   // the folder the template list shows (FileXls.Path)
  discovery::ComboPicker voltDump;  // cboVoltDump: report dumps
  discovery::ComboPicker sheetNo;   // cboSheetNo: first sheet number
  templ::FieldPanel fields;         // lblField / txtField
  std::string txtExcelFilename;     // the last generated workbook's path
  std::string statusText;           // status bar: where a run kept the template before writing into it
  bool includeEmptyRows = false;    // command 305 checked
  bool useSlashTwo = false;         // command 306 checked
  bool singleSheet = false;         // command 707 checked; stored, by design not restored at start
  bool singleSheetEnabled = true;   // command 707 enabled: see the marker flag above
  bool refreshing = false;          // pickers are being filled: changes do not reload the preview
  std::string currentReportId;      // CurrentReportId
  templ::TemplateDefinition definition;
  report::ReportTable table;  // fgPreView

  // The window's load step without its widget work, in order: the CAD INI file, then `windowSteps`
  // (placement, theme, command bars; run after "Restore Mainform" is logged), the toggles 305 and 306
  // from the settings, RefreshFiles, and the sheet number padded to "PageNoLen" characters.
  void Load(const std::function<void()>& windowSteps = {});
  // The close-time saves of the last choices: "LastVoltDmp", then "LastRdsDir".
  void SaveOnClose();

  // Command 704: RefreshFiles, the current report and the template list with the refreshing flag up,
  // then the preview and the export-file check.
  void RefreshSequence();
  void RefreshFiles();
  void ReadCurrentReport();
  // ListTemplates for the directory on screen and the match with the current report, then the pairing
  // with an INI file. A matched template counts as chosen (cboRdsFile_Change); without a match the
  // pairing finds nothing, says so, and leaves the field panel empty and IniPath "".
  void RefillTemplates();
  // PreviewVoltDump for the dump on screen (nothing while refreshing).
  void PreviewVoltDump();
  // Part of the outer connection table's repair: offered without `force` only for FBLTAY.
  bool AdjustExportFile(bool force);

  // The picker handlers.
  void cboRdsDir_Change();
  void cboRdsDir_Click() { cboRdsDir_Change(); }
  void cboVoltDump_Change();
  void cboVoltDump_Click() { cboVoltDump_Change(); }
  void cboRdsFile_Change();
  void cboRdsFile_Click() { cboRdsFile_Change(); }

  // The user's actions on the pickers: typing (SetText) raises Change, choosing from the list Click.
  void TypeTemplateDirectory(std::string text);
  void ChooseTemplateDirectory(int index);
  void TypeReportDump(std::string text);
  void ChooseReportDump(int index);
  // Choosing a template pairs it with its INI file first, so the reload uses its layout.
  void ChooseTemplate(int index);

  // The toggles 305 ("IncludeEmptyRows"), 306 ("UseSlashTwo") and 707 ("SingleSheet"): invert, store
  // "1"/"0", and for 305/306 reload the dump when switched on or tidy the table when switched off.
  void ToggleIncludeEmptyRows();
  void ToggleUseSlashTwo();
  void ToggleSingleSheet();

 private:
  void Log(std::string_view message) const;
  void PairTemplate();

  WorkspaceServices services_;
  templ::PreviewPageLayout layout_;
};

}  // namespace sw::workspace
