#pragma once
// The run-time errors of discovery, by number, as the user is shown them: "<number> - <description>".
// Each step of a refresh catches what goes wrong inside it, so one bad configuration file or folder
// costs the user that step, not the whole list.
#include <exception>
#include <string>

#include "base/error_numbers.h"
#include "base/numbered_error.h"
#include "base/outcome.h"

namespace sw::discovery {

using base::kInvalidProcedureCall;
using base::kOutOfMemory;
using base::kPathFileAccess;
using base::kPermissionDenied;
// An error raised by Excel; a refresh step skips it without a word.
using base::kApplicationDefined;
using base::NumberedError;

struct StepFailure {
  int number = 0;
  std::string description;
};

// The number and description of an exception a step let out: a NumberedError as it stands, a file
// system error as 75, exhausted memory as 7, anything else as 5 with its own text.
StepFailure DescribeFailure(std::exception_ptr error);

// A step that did not get through: the notice "<number> - <description>" with an exclamation icon,
// none for 1004.
base::Outcome<base::Done> FailedStep(const StepFailure& failure);

// Runs one step; a failure ends it with Done::kNo and what FailedStep tells.
template <typename Step>
base::Outcome<base::Done> RunStep(Step&& step) {
  try {
    step();
    return {};
  } catch (...) {
    return FailedStep(DescribeFailure(std::current_exception()));
  }
}

}  // namespace sw::discovery
