#pragma once
// The system's own information tool, which the about box offers for support calls. Windows has one
// (msinfo32.exe); elsewhere there is none, and the about box leaves its button out.
#include <memory>

namespace sw::base {

class SystemInformationTool {
 public:
  virtual ~SystemInformationTool() = default;
  // Whether this system has the tool at all.
  virtual bool Available() const = 0;
  // Starts the tool without waiting for it. False when nothing could be started.
  virtual bool Start() = 0;
};

// The tool of this platform.
std::unique_ptr<SystemInformationTool> CreateSystemInformationTool();

}  // namespace sw::base
