#include <windows.h>

#include "base/own_temp_files.h"

namespace sw::base {

unsigned long long CurrentProcessId() {
  return GetCurrentProcessId();
}

bool ProcessRuns(unsigned long long processId) {
  if (processId == 0 || processId > 0xFFFFFFFFull) return false;
  HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(processId));
  if (process == nullptr) return GetLastError() == ERROR_ACCESS_DENIED;
  const bool running = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
  CloseHandle(process);
  return running;
}

}  // namespace sw::base
