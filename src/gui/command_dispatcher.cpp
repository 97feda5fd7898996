#include "gui/command_dispatcher.h"

#include <exception>
#include <new>

namespace sw::gui {

void CommandDispatcher::On(int id, std::function<void()> action) {
  actions_[id] = std::move(action);
}

bool CommandDispatcher::Dispatch(int id) const {
  const auto found = actions_.find(id);
  if (found == actions_.end() || !found->second) return false;
  // A command runs with its errors ignored: one that fails simply ends, and the window stays usable.
  try {
    found->second();
    return true;
  } catch (const std::bad_alloc&) {
    // Unlike other failures this one the user must hear of: the command did not do its work.
    if (outOfMemory_) outOfMemory_(id);
    return false;
  } catch (const std::exception&) {
    return false;
  } catch (...) {
    return false;
  }
}

}  // namespace sw::gui
