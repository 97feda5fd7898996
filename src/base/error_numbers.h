#pragma once
// The numbered run-time errors: what the user is shown as "<number> - <description>" and what the
// program tells apart. Users quote these numbers to support and in their own notes, so each keeps the
// value the program has always shown for it.
#include <string>
#include <system_error>

namespace sw::base {

enum ErrorNumber : int {
  kInvalidProcedureCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kTypeMismatch = 13,
  kFileNotFound = 53,
  kDeviceUnavailable = 68,
  kPermissionDenied = 70,
  kPathFileAccess = 75,
  kObjectNotSet = 91,
  kCannotCreateObject = 429,
  kMemberNotFound = 438,
  kNamedArgumentNotFound = 448,
  kArgumentNotOptional = 449,
  kApplicationDefined = 1004,  // raised by Excel
};

// The description that goes with `number`, in the program's language: "Fel <number>" for a number
// the program has no text of its own for.
std::string ErrorText(int number);

// The number a refused file access stands for, as Excel reports it: a locked or write-protected file
// is "permission denied" (70), a missing drive or medium "device unavailable" (68); 0 for any other
// error, which the caller tells in its own words.
int ErrorNumberOfFileError(const std::error_code& error);

}  // namespace sw::base
