// Builds without Microsoft Excel's COM interface: asking for it fails as CreateObject fails on a
// machine where Excel is not installed.
#include "base/error_numbers.h"
#include "excel/application_factory.h"

namespace sw::excel {

std::unique_ptr<Engine> CreateExcelAutomationEngine() {
  throw base::NumberedError(kCannotCreateObject);
}

}  // namespace sw::excel
