#include "discovery/step_failure.h"

#include <filesystem>
#include <new>

#include "base/out_of_memory.h"

namespace sw::discovery {

StepFailure DescribeFailure(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const NumberedError& numbered) {
    return {numbered.number(), numbered.what()};
  } catch (const std::filesystem::filesystem_error&) {
    return {kPathFileAccess, "Fel vid åtkomst till sökväg/fil"};
  } catch (const std::bad_alloc&) {
    return {kOutOfMemory, std::string(base::kOutOfMemoryText)};
  } catch (const std::exception& other) {
    return {kInvalidProcedureCall, other.what()};
  } catch (...) {
    return {kInvalidProcedureCall, "Ogiltigt proceduranrop eller argument"};
  }
}

void ReportStepFailure(base::Dialogs& dialogs, const StepFailure& failure) {
  if (failure.number == kApplicationDefined) return;
  dialogs.ShowMessage({.text = std::to_string(failure.number) + " - " + failure.description,
                       .title = {},
                       .icon = base::MessageIcon::kExclamation,
                       .buttons = base::MessageButtons::kOk});
}

}  // namespace sw::discovery
