#include "base/local_time_zone.h"

namespace sw::base {

// The Windows C library reads the zone once by itself.
void ReadLocalTimeZoneOnce() {}

}  // namespace sw::base
