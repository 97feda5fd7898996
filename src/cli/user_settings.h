#pragma once
// The user's settings store as a command opens it.
#include <iosfwd>
#include <memory>

#include "cadenv/registry.h"

namespace sw::cli {

// The user's registry. Where it is a settings file, a file that cannot be read at all (a folder, a
// pipe, no permission) is told on `err` and nothing is returned; a file that does not parse is read as
// empty, and when a write sets it aside `err` is told where the old file was kept; a lock another
// program keeps past the wait is told once and the command goes on without saving its settings.
std::unique_ptr<cadenv::Registry> OpenUserSettings(std::ostream& err);

}  // namespace sw::cli
