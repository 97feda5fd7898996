// Windows: Microsoft Excel through COM, created by its ProgID as CreateObject does.
#include "excel/application_factory.h"
#include "excel/com/com_engine_win.h"

namespace sw::excel {

std::unique_ptr<Engine> CreateExcelAutomationEngine() {
  return com::CreateComEngine(com::CreateExcelByProgId);
}

}  // namespace sw::excel
