#include "cli/memory_guard.h"

#include <new>

#include "base/dialogs.h"
#include "base/out_of_memory.h"
#include "cli/console_dialogs.h"

namespace sw::cli {

int RunGuardingMemory(std::ostream& err, std::string_view doing, const std::function<int()>& command) {
  try {
    return command();
  } catch (const std::bad_alloc&) {
    // Whatever the command held is released by now, so the message itself has room.
    err << FormatMessageLine({base::OutOfMemoryMessage(doing), "Fel", base::MessageIcon::kCritical,
                              base::MessageButtons::kOk})
        << '\n';
    return 1;
  }
}

}  // namespace sw::cli
