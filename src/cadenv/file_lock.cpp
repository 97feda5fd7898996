#include "cadenv/file_lock.h"

#include <algorithm>
#include <thread>

namespace sw::cadenv {

ExclusiveFileLock::ExclusiveFileLock(const std::filesystem::path& lockFile, std::chrono::milliseconds maxWait) {
  if (!Open(lockFile)) return;
  // Polling instead of a blocking lock: neither platform offers a blocking lock with a time limit.
  const auto deadline = std::chrono::steady_clock::now() + maxWait;
  auto pause = std::chrono::milliseconds(1);
  for (;;) {
    if (TryLock()) {
      held_ = true;
      return;
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      timedOut_ = true;
      return;
    }
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds(50));
  }
}

}  // namespace sw::cadenv
