#include <windows.h>

#include <QByteArray>
#include <QtGlobal>

#include "gui/font_engine.h"

namespace sw::gui {
namespace {

// Wine's ntdll exports its version; Windows' does not.
bool RunningUnderWine() {
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  return ntdll && GetProcAddress(ntdll, "wine_get_version");
}

}  // namespace

void ChooseFontEngine() {
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || !RunningUnderWine()) return;
  qputenv("QT_QPA_PLATFORM", QByteArray("windows:fontengine=freetype"));
}

}  // namespace sw::gui
