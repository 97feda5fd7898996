#include <cstdlib>
#include <ctime>

#include "base/local_time_zone.h"

namespace sw::base {

void ReadLocalTimeZoneOnce() {
  // ":/etc/localtime" is the file the C library reads when TZ is unset; named, it is remembered.
  if (std::getenv("TZ") == nullptr) ::setenv("TZ", ":/etc/localtime", 0);
  ::tzset();
}

}  // namespace sw::base
