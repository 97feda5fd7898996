#include "base/error_numbers.h"

namespace sw::base {

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
