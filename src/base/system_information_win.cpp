#include <windows.h>

#include <string>

#include "base/system_information.h"

namespace sw::base {
namespace {

// msinfo32.exe lives in the system folder, which is on every user's search path.
class Msinfo32 final : public SystemInformationTool {
 public:
  bool Available() const override { return true; }
  bool Start() override {
    std::wstring commandLine = L"msinfo32.exe";
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
};

}  // namespace

std::unique_ptr<SystemInformationTool> CreateSystemInformationTool() {
  return std::make_unique<Msinfo32>();
}

}  // namespace sw::base
