// Without Excel the desktop's spreadsheet program shows the workbooks and its text editor the INI file.
#include "session/desktop_external_editor.h"
#include "session/external_editor.h"

namespace sw::session {

std::unique_ptr<ExternalEditor> CreatePlatformExternalEditor(ExternalEditingServices services) {
  return std::make_unique<DesktopExternalEditor>(std::move(services));
}

}  // namespace sw::session
