#pragma once
// The template and the report dump opened in Excel through automation, the INI file in Notepad.
#include <memory>

#include "session/external_editor.h"

namespace sw::session {

class ExcelExternalEditor final : public ExternalEditor {
 public:
  explicit ExcelExternalEditor(ExternalEditingServices services) : services_(std::move(services)) {}

  // A new Excel, the template opened writable (the user may change and save it there), Excel shown.
  void OpenTemplateWorkbook(const std::string& path) override;
  // A new Excel shown first, so the user sees it while the text is imported; then the dump as
  // ImportReportDump opens it.
  void OpenReportDump(const std::string& path) override;
  // Notepad with the path in quotation marks.
  void EditTemplateIni(const std::string& path) override;

 private:
  std::unique_ptr<excel::Application> StartExcel() const;

  ExternalEditingServices services_;
};

}  // namespace sw::session
