#pragma once
// The run-time errors of discovery, by number, as the user is shown them: "<number> - <description>".
// Each step of a refresh catches what goes wrong inside it, so one bad configuration file or folder
// costs the user that step, not the whole list.
#include <exception>
#include <stdexcept>
#include <string>

#include "base/dialogs.h"
#include "base/error_numbers.h"

namespace sw::discovery {

using base::kInvalidProcedureCall;
using base::kOutOfMemory;
using base::kPathFileAccess;
using base::kPermissionDenied;
// An error raised by Excel; a refresh step skips it without a word.
using base::kApplicationDefined;

class NumberedError : public std::runtime_error {
 public:
  NumberedError(int number, const std::string& description)
      : std::runtime_error(description), number_(number) {}
  int number() const { return number_; }

 private:
  int number_;
};

struct StepFailure {
  int number = 0;
  std::string description;
};

// The number and description of an exception a step let out: a NumberedError as it stands, a file
// system error as 75, exhausted memory as 7, anything else as 5 with its own text.
StepFailure DescribeFailure(std::exception_ptr error);

// Runs one step. A failure other than 1004 is told in a message box with an exclamation icon and the
// text "<number> - <description>"; 1004 is skipped silently. Returns whether the step ran through.
template <typename Step>
bool RunStep(base::Dialogs& dialogs, Step&& step);

void ReportStepFailure(base::Dialogs& dialogs, const StepFailure& failure);

template <typename Step>
bool RunStep(base::Dialogs& dialogs, Step&& step) {
  try {
    step();
    return true;
  } catch (...) {
    ReportStepFailure(dialogs, DescribeFailure(std::current_exception()));
    return false;
  }
}

}  // namespace sw::discovery
