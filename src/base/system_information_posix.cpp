#include "base/system_information.h"

namespace sw::base {
namespace {

// The desktops the program runs on here have no common system-information program.
class NoSystemInformationTool final : public SystemInformationTool {
 public:
  bool Available() const override { return false; }
  bool Start() override { return false; }
};

}  // namespace

std::unique_ptr<SystemInformationTool> CreateSystemInformationTool() {
  return std::make_unique<NoSystemInformationTool>();
}

}  // namespace sw::base
