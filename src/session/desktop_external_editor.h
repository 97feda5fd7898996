#pragma once
// Without Excel: the template and the INI file opened with the programs the desktop associates with
// them, the report dump turned into a workbook by the built-in engine, as Excel would import it, and
// that workbook opened in the desktop's spreadsheet program.
#include <filesystem>

#include "session/external_editor.h"

namespace sw::session {

class DesktopExternalEditor final : public ExternalEditor {
 public:
  // `tempFolder`: where the workbooks made from dumps are written; empty: the system's temporary folder.
  explicit DesktopExternalEditor(ExternalEditingServices services, std::filesystem::path tempFolder = {})
      : services_(std::move(services)), tempFolder_(std::move(tempFolder)) {}

  void OpenTemplateWorkbook(const std::string& path) override;
  // The workbook goes to a folder of its own made under the temporary folder, never beside the dump,
  // and is written completely before the spreadsheet program is started on it. It stays there after:
  // the program does not know when the user is done with it.
  void OpenReportDump(const std::string& path) override;
  void EditTemplateIni(const std::string& path) override;

 private:
  ExternalEditingServices services_;
  std::filesystem::path tempFolder_;
};

}  // namespace sw::session
