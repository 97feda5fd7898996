// On Windows the users have Excel beside the CAD system, and Notepad for the INI files.
#include "session/excel_external_editor.h"
#include "session/external_editor.h"

namespace sw::session {

std::unique_ptr<ExternalEditor> CreatePlatformExternalEditor(ExternalEditingServices services) {
  return std::make_unique<ExcelExternalEditor>(std::move(services));
}

}  // namespace sw::session
