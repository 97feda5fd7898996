#pragma once
// The user's settings store as a front end opens it, with what the user must be told about it: a file
// that cannot be read at all (a folder, a pipe, a device, no permission), a file that did not parse and
// is kept aside before the first write, and another program holding the store's lock past the wait.
#include <chrono>
#include <functional>
#include <memory>

#include "base/notice.h"
#include "base/outcome.h"
#include "cadenv/registry.h"

namespace sw::session {

enum class SettingsFileStatus { kReadable, kUnreadable };

struct UserSettingsFile {
  // The store; where it is a file that cannot be read, it reads as empty and keeps nothing.
  std::unique_ptr<cadenv::Registry> registry;
  base::Outcome<SettingsFileStatus> outcome;  // the notice for an unreadable file
};

// `later` is told what happens on a later write (the broken file kept aside, the lock given up), once
// each, while the store lives.
UserSettingsFile OpenUserSettingsFile(std::function<void(base::Notice)> later,
                                      std::chrono::milliseconds lockWait = std::chrono::milliseconds(5000));

// The same for a store file the caller names (tests, and a store opened from elsewhere).
UserSettingsFile OpenSettingsFileAt(std::unique_ptr<cadenv::Registry> registry,
                                    std::function<void(base::Notice)> later, std::chrono::milliseconds lockWait);

}  // namespace sw::session
