#include "discovery/step_failure.h"

#include <filesystem>
#include <new>

namespace sw::discovery {

StepFailure DescribeFailure(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const NumberedError& numbered) {
    return {numbered.number(), numbered.description()};
  } catch (const std::filesystem::filesystem_error&) {
    return {kPathFileAccess, base::ErrorText(kPathFileAccess)};
  } catch (const std::bad_alloc&) {
    return {kOutOfMemory, base::ErrorText(kOutOfMemory)};
  } catch (const std::exception& other) {
    return {kInvalidProcedureCall, other.what()};
  } catch (...) {
    return {kInvalidProcedureCall, base::ErrorText(kInvalidProcedureCall)};
  }
}

base::Outcome<base::Done> FailedStep(const StepFailure& failure) {
  base::Outcome<base::Done> outcome;
  outcome.Fail(base::Done::kNo);
  if (failure.number == kApplicationDefined) return outcome;
  return outcome.Tell(std::to_string(failure.number) + " - " + failure.description,
                      base::MessageIcon::kExclamation);
}

}  // namespace sw::discovery
