// Builds without Microsoft Excel's COM interface: asking for it fails as CreateObject fails on a
// machine where Excel is not installed.
#include "excel/application_factory.h"
#include "excel/error_texts.h"

namespace sw::excel {

std::unique_ptr<Engine> CreateExcelAutomationEngine() {
  throw AutomationError(kCannotCreateObject, DefaultErrorText(kCannotCreateObject));
}

}  // namespace sw::excel
