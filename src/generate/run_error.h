#pragma once
// Run-time errors of a generation run. The program's own failures (a start number that is no number,
// a page number past 32767, a folder where the target should be) are raised as base::NumberedError with
// the number VB gives them, so one handler tells every failure apart by number, Excel's and ours.
#include <cstdint>
#include <string>
#include <string_view>

#include "base/error_numbers.h"
#include "excel/automation.h"

namespace sw::generate {

// Excel's numbers (68, 70, 429, 1004) and the run's own (6, 13, 53, 75), under one set of names.
using base::kApplicationDefined;
using base::kCannotCreateObject;
using base::kDeviceUnavailable;
using base::kFileNotFound;
using base::kOverflow;
using base::kPathFileAccess;
using base::kPermissionDenied;
using base::kTypeMismatch;

// Raises error `number` with its own text (base::ErrorText).
[[noreturn]] void RaiseRunError(int number);

// One statement under "On Error Resume Next" for Excel's 1004 only: a rejected cell write, selection
// or page break is skipped and the run goes on with the next statement; any other error goes on to
// the routine's handler. Each automation statement is wrapped on its own, so a skipped one leaves the
// ones after it untouched, as in the routine this follows.
template <typename Statement>
void ResumeOn1004(Statement&& statement) {
  try {
    statement();
  } catch (const base::NumberedError& error) {
    if (error.number() != kApplicationDefined) throw;
  }
}

// 16-bit integer arithmetic as the routine's Integer variables do it: a result outside −32768..32767
// raises error 6.
std::int16_t Int16(long long value);

// The start number as VB reads a text in arithmetic: surrounding spaces, an optional sign and digits.
// Anything else raises error 13, a number outside the 16-bit range error 6.
std::int16_t StartNumberValue(std::string_view text);

// A run replaces the file at `windowsPath` only at its end; what it checks before: a folder of that
// name raises 75, as Kill and the save after it would have failed.
void CheckTargetReplaceable(std::string_view windowsPath);

// Why the system refused to write `windowsPath` ("permission denied"), when it is not that another
// program has the file open: the folder takes no new files, or the file is write-protected. Empty when
// neither holds. The run's messages for a file in use add it on a line of their own.
std::string WriteRefusalCause(std::string_view windowsPath);

// The host path an engine is given for a Windows path text.
std::string EnginePath(std::string_view windowsPath);

}  // namespace sw::generate
