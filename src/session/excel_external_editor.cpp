#include "session/excel_external_editor.h"

#include "excel/application_factory.h"
#include "generate/run_error.h"
#include "session/editing_messages.h"
#include "session/report_import.h"

namespace sw::session {

// Every call starts an Excel of its own and lets go of it at the end. A visible Excel stays open for
// the user; holding on to it would keep its process running unseen after the user closes its window.

std::unique_ptr<excel::Application> ExcelExternalEditor::StartExcel() const {
  return services_.createExcel ? services_.createExcel()
                               : excel::CreateApplication(excel::EngineKind::kExcelAutomation);
}

void ExcelExternalEditor::OpenTemplateWorkbook(const std::string& path) {
  try {
    auto excel = StartExcel();
    excel->Workbooks().Open(generate::EnginePath(path),
                            excel::OpenArguments{.updateLinks = {}, .readOnly = false});
    excel->SetVisible(true);
  } catch (const base::NumberedError& error) {
    TellExcelFailure(services_.dialogs, error);
  }
}

void ExcelExternalEditor::OpenReportDump(const std::string& path) {
  try {
    auto excel = StartExcel();
    excel->SetVisible(true);
    ImportReportDump(*excel, generate::EnginePath(path));
  } catch (const base::NumberedError& error) {
    TellExcelFailure(services_.dialogs, error);
  }
}

void ExcelExternalEditor::EditTemplateIni(const std::string& path) {
  if (!services_.launcher.StartCommandLine("notepad.exe \"" + path + "\"")) {
    TellNothingStarted(services_.dialogs, path);
  }
}

}  // namespace sw::session
