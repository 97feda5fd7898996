#include <windows.h>
// shellapi.h needs the types windows.h declares, so it comes second.
#include <shellapi.h>

#include <string>

#include "base/process_launcher.h"

namespace sw::base {
namespace {

std::wstring Wide(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), size);
  return wide;
}

class WindowsProcessLauncher final : public ProcessLauncher {
 public:
  bool EditTextFile(std::string_view windowsPath) override {
    // The command line Notepad has always been started with: no quotes around the path.
    return StartCommandLine("NOTEPAD.EXE " + std::string(windowsPath));
  }

  bool StartCommandLine(std::string_view utf8CommandLine) override {
    std::wstring commandLine = Wide(utf8CommandLine);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
      return false;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
  }

  bool RunMinimisedAndWait(std::string_view commandLine) override {
    std::wstring line = Wide(commandLine);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWMINNOACTIVE;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
      return false;
    }
    CloseHandle(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hProcess);
    return status == 0;
  }

  bool OpenWithDefaultApplication(std::string_view windowsPath) override {
    const std::wstring path = Wide(windowsPath);
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
