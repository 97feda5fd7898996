#include "excel/application_factory.h"

#include "excel/package/package_engine.h"

namespace sw::excel {

std::unique_ptr<Application> CreateApplication(EngineKind kind) {
  switch (kind) {
    case EngineKind::kExcelAutomation:
      return std::make_unique<Application>(CreateExcelAutomationEngine());
    case EngineKind::kPackage:
      break;
  }
  return std::make_unique<Application>(std::make_unique<PackageEngine>());
}

}  // namespace sw::excel
