#pragma once
// The engine that drives Microsoft Excel itself through its automation interface, late-bound by
// member name. Who makes the application object is the caller's choice: Excel by its ProgID in the
// program, a scripted stand-in in tests.
#include <oaidl.h>

#include <functional>
#include <memory>

#include "excel/engine.h"

namespace sw::excel::com {

struct ComEngineOptions {
  // Consecutive cell writes are sent as one array write per rectangle of written cells. Each call
  // crosses into Excel's process and costs about a millisecond, so a page of single writes is slow.
  bool combineWrites = true;
};

// Hands out a new reference to an application object, or a failure HRESULT.
using ApplicationCreator = std::function<HRESULT(IDispatch** application)>;

// CreateObject("Excel.Application"): the ProgID's class on the local server.
HRESULT CreateExcelByProgId(IDispatch** application);

// Throws base::NumberedError 429 when `create` fails, as CreateObject does.
std::unique_ptr<Engine> CreateComEngine(const ApplicationCreator& create, ComEngineOptions options = {});

}  // namespace sw::excel::com
