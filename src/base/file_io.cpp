#include "base/file_io.h"

namespace sw::base {

bool IsNotARegularFile(const std::error_code& error) {
  return error == std::errc::is_a_directory || error == std::errc::invalid_argument;
}

}  // namespace sw::base
