#include <windows.h>

#include "base/start_process_win.h"
#include "base/system_information.h"

namespace sw::base {
namespace {

// msinfo32.exe lives in the system folder, which is on every user's search path.
class Msinfo32 final : public SystemInformationTool {
 public:
  bool Available() const override { return true; }
  bool Start() override { return StartProcess("msinfo32.exe", SW_SHOWNORMAL, /*wait=*/false); }
};

}  // namespace

std::unique_ptr<SystemInformationTool> CreateSystemInformationTool() {
  return std::make_unique<Msinfo32>();
}

}  // namespace sw::base
