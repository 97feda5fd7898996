#include "base/error_numbers.h"

namespace sw::base {

std::string ErrorText(int number) {
  switch (number) {
    case kInvalidProcedureCall:
      return "Ogiltigt proceduranrop eller argument";
    case kOverflow:
      return "Spill";
    case kOutOfMemory:
      return "Slut på minne";
    case kSubscriptOutOfRange:
      return "Indexet ligger utanför intervallet";
    case kTypeMismatch:
      return "Typerna matchar inte";
    case kFileNotFound:
      return "Filen hittades inte";
    case kDeviceUnavailable:
      return "Enheten är inte tillgänglig";
    case kPermissionDenied:
      return "Åtkomst nekad";
    case kPathFileAccess:
      return "Fel vid åtkomst till sökväg/fil";
    case kObjectNotSet:
      return "Objektvariabeln eller With-blockvariabeln har inte angetts";
    case kCannotCreateObject:
      return "ActiveX-komponenten kan inte skapa objektet";
    case kMemberNotFound:
      return "Objektet stöder inte egenskapen eller metoden";
    case kNamedArgumentNotFound:
      return "Det gick inte att hitta det namngivna argumentet";
    case kArgumentNotOptional:
      return "Argumentet är inte valfritt";
    case kApplicationDefined:
      return "Programdefinierat eller objektdefinierat fel";
    default:
      return "Fel " + std::to_string(number);
  }
}

int ErrorNumberOfFileError(const std::error_code& error) {
  if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
      error == std::errc::device_or_resource_busy || error == std::errc::text_file_busy ||
      error == std::errc::read_only_file_system) {
    return kPermissionDenied;
  }
  if (error == std::errc::no_such_device || error == std::errc::no_such_device_or_address ||
      error == std::errc::io_error) {
    return kDeviceUnavailable;
  }
  return 0;
}

}  // namespace sw::base
