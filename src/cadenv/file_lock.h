#pragma once
// An advisory lock between processes, held on a separate lock file for as long as the object lives.
// Writers of the portable registry take it so that concurrent read-modify-write cycles do not lose
// each other's updates.
#include <chrono>
#include <cstdint>
#include <filesystem>

namespace sw::cadenv {

class ExclusiveFileLock {
 public:
  // Creates the lock file when missing and waits until the lock is held, at most `maxWait`: a lock
  // another program keeps must not make this one wait for ever without a word.
  ExclusiveFileLock(const std::filesystem::path& lockFile, std::chrono::milliseconds maxWait);
  ~ExclusiveFileLock();
  ExclusiveFileLock(const ExclusiveFileLock&) = delete;
  ExclusiveFileLock& operator=(const ExclusiveFileLock&) = delete;

  // False when the lock file could not be opened or locked.
  bool Held() const { return held_; }
  // True when the lock file opened but another holder kept the lock past the wait.
  bool TimedOut() const { return timedOut_; }

 private:
  bool Open(const std::filesystem::path& lockFile);  // the platform's part: open or create the lock file
  bool TryLock();                                    // and take the lock without waiting
  std::intptr_t handle_ = -1;
  bool held_ = false;
  bool timedOut_ = false;
};

}  // namespace sw::cadenv
