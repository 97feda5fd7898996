#pragma once
// One place from a command id to what it does: menus, toolbars, shortcuts and popups all end here.
// An id without an action does nothing, and an action that fails ends there: the program goes on.
#include <functional>
#include <map>

namespace sw::gui {

class CommandDispatcher {
 public:
  // `action` runs for `id` from now on (a later On for the same id replaces it).
  void On(int id, std::function<void()> action);
  bool Has(int id) const { return actions_.count(id) != 0; }
  // Runs the action of `id`, if any. False when there is none or it failed; whatever the action
  // wanted the user to know it has shown itself.
  bool Dispatch(int id) const;
  // Told with the id of a command that ran out of memory; the command has ended, the window goes on.
  void OnOutOfMemory(std::function<void(int)> tell) { outOfMemory_ = std::move(tell); }

 private:
  std::map<int, std::function<void()>> actions_;
  std::function<void(int)> outOfMemory_;
};

}  // namespace sw::gui
