#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "base/own_temp_files.h"

namespace sw::base {

unsigned long long CurrentProcessId() {
  return static_cast<unsigned long long>(::getpid());
}

bool ProcessRuns(unsigned long long processId) {
  if (processId == 0 || processId > static_cast<unsigned long long>(INT32_MAX)) return false;
  // A process owned by someone else answers EPERM: it runs all the same.
  return ::kill(static_cast<pid_t>(processId), 0) == 0 || errno == EPERM;
}

}  // namespace sw::base
