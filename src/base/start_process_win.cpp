#include "base/start_process_win.h"

#include <windows.h>

namespace sw::base {

std::wstring WideFromUtf8(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), size);
  return wide;
}

bool StartProcess(std::string_view utf8CommandLine, int show, bool wait) {
  // CreateProcessW may write into the command line, so it gets a copy of its own.
  std::wstring commandLine = WideFromUtf8(utf8CommandLine);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(show);
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process)) {
    return false;
  }
  CloseHandle(process.hThread);
  DWORD status = 0;
  if (wait) {
    WaitForSingleObject(process.hProcess, INFINITE);
    status = 1;
    GetExitCodeProcess(process.hProcess, &status);
  }
  CloseHandle(process.hProcess);
  return status == 0;
}

}  // namespace sw::base
