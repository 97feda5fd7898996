#pragma once
// An advisory lock between processes, held on a separate lock file for as long as the object lives.
// Writers of the portable registry take it so that concurrent read-modify-write cycles do not lose
// each other's updates.
#include <cstdint>
#include <filesystem>

namespace sw::cadenv {

class ExclusiveFileLock {
 public:
  // Creates the lock file when missing and waits until the lock is held.
  explicit ExclusiveFileLock(const std::filesystem::path& lockFile);
  ~ExclusiveFileLock();
  ExclusiveFileLock(const ExclusiveFileLock&) = delete;
  ExclusiveFileLock& operator=(const ExclusiveFileLock&) = delete;

  // False when the lock file could not be opened or locked.
  bool Held() const { return held_; }

 private:
  std::intptr_t handle_ = -1;
  bool held_ = false;
};

}  // namespace sw::cadenv
