#include "excel/error_texts.h"

#include "excel/constants.h"

namespace sw::excel {

std::string DefaultErrorText(int number) {
  switch (number) {
    case kSubscriptOutOfRange:
      return "Indexet ligger utanför intervallet";
    case kDeviceUnavailable:
      return "Enheten är inte tillgänglig";
    case kPermissionDenied:
      return "Åtkomst nekad";
    case kObjectNotSet:
      return "Objektvariabeln eller With-blockvariabeln har inte angetts";
    case kCannotCreateObject:
      return "ActiveX-komponenten kan inte skapa objektet";
    case kApplicationDefined:
      return "Programdefinierat eller objektdefinierat fel";
    default:
      return "Fel " + std::to_string(number);
  }
}

}  // namespace sw::excel
