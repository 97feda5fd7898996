#pragma once
// A ProcessLauncher double: records what would have been started, starts nothing.
#include <string>
#include <string_view>
#include <vector>

#include "base/process_launcher.h"

namespace sw::testing {

class RecordingLauncher final : public base::ProcessLauncher {
 public:
  std::vector<std::string> edited;
  std::vector<std::string> opened;
  std::vector<std::string> commandLines;
  bool starts = true;  // false: as if no program could be started (still recorded)
  std::vector<std::string> waitedFor;  // command lines run minimised and waited for
  bool runSucceeds = true;
  bool EditTextFile(std::string_view path) override {
    edited.emplace_back(path);
    return starts;
  }
  bool OpenWithDefaultApplication(std::string_view path) override {
    opened.emplace_back(path);
    return starts;
  }
  bool StartCommandLine(std::string_view commandLine) override {
    commandLines.emplace_back(commandLine);
    return starts;
  }
  bool RunMinimisedAndWait(std::string_view commandLine) override {
    waitedFor.emplace_back(commandLine);
    return runSucceeds;
  }
};

}  // namespace sw::testing
