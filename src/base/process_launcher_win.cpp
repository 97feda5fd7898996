#include <windows.h>
// shellapi.h needs the types windows.h declares, so it comes second.
#include <shellapi.h>

#include <string>

#include "base/process_launcher.h"
#include "base/start_process_win.h"

namespace sw::base {
namespace {

class WindowsProcessLauncher final : public ProcessLauncher {
 public:
  bool EditTextFile(std::string_view windowsPath) override {
    // The command line Notepad has always been started with: no quotes around the path.
    return StartCommandLine("NOTEPAD.EXE " + std::string(windowsPath));
  }

  bool StartCommandLine(std::string_view commandLine) override {
    return StartProcess(commandLine, SW_SHOWNORMAL, /*wait=*/false);
  }

  bool RunMinimisedAndWait(std::string_view commandLine) override {
    return StartProcess(commandLine, SW_SHOWMINNOACTIVE, /*wait=*/true);
  }

  bool OpenWithDefaultApplication(std::string_view windowsPath) override {
    const std::wstring path = WideFromUtf8(windowsPath);
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(nullptr, L"open", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return result > 32;
  }
};

}  // namespace

std::unique_ptr<ProcessLauncher> CreateSystemProcessLauncher() {
  return std::make_unique<WindowsProcessLauncher>();
}

}  // namespace sw::base
