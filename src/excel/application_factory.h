#pragma once
// Starting an automation application, the equivalent of CreateObject("Excel.Application").
#include <memory>

#include "excel/automation.h"

namespace sw::excel {

enum class EngineKind {
  kPackage,         // the built-in engine that edits .xlsx/.xlsm files itself
  kExcelAutomation  // Microsoft Excel through COM (Windows only)
};

// Throws base::NumberedError 429 when the engine cannot be started.
std::unique_ptr<Application> CreateApplication(EngineKind kind = EngineKind::kPackage);

// The COM engine; its platform file decides whether one exists. Throws 429 where it does not.
std::unique_ptr<Engine> CreateExcelAutomationEngine();

}  // namespace sw::excel
