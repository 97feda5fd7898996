#pragma once
// Handing a file to another program for the user to look at or change there: the template workbook,
// the report dump as a spreadsheet, the template's INI file. Each call starts the other program and
// lets go of it at once; nothing waits for it and nothing is read back. What goes wrong is told through
// the dialogs; nothing is thrown.
#include <memory>
#include <string>

#include "base/dialogs.h"
#include "base/process_launcher.h"
#include "generate/generate_workbook.h"
#include "report/dump_reader.h"

namespace sw::session {

struct ExternalEditingServices {
  base::Dialogs& dialogs;
  base::ProcessLauncher& launcher;
  generate::ApplicationFactory createExcel;  // CreateObject("Excel.Application"); none: Excel through COM
  // The hourglass and the progress bar while the built-in engine writes a dump as a workbook; none:
  // nothing is shown.
  report::LoadProgress* progress = nullptr;
};

class ExternalEditor {
 public:
  virtual ~ExternalEditor() = default;
  // Each is given the Windows path text of a file that exists.
  virtual void OpenTemplateWorkbook(const std::string& path) = 0;
  virtual void OpenReportDump(const std::string& path) = 0;
  virtual void EditTemplateIni(const std::string& path) = 0;
};

// This platform's way: Excel and Notepad on Windows, the desktop's own programs elsewhere.
std::unique_ptr<ExternalEditor> CreatePlatformExternalEditor(ExternalEditingServices services);

}  // namespace sw::session
