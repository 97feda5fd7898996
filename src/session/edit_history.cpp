#include "session/edit_history.h"

#include <utility>

namespace sw::session {

void EditHistory::Record(EditedState before) {
  undo_.push_back(std::move(before));
  redo_.clear();
}

bool EditHistory::Undo(EditedState& current) {
  openField_ = -1;
  if (undo_.empty()) return false;
  redo_.push_back(std::move(current));
  current = std::move(undo_.back());
  undo_.pop_back();
  return true;
}

bool EditHistory::Redo(EditedState& current) {
  openField_ = -1;
  if (redo_.empty()) return false;
  undo_.push_back(std::move(current));
  current = std::move(redo_.back());
  redo_.pop_back();
  return true;
}

void EditHistory::Clear() {
  undo_.clear();
  redo_.clear();
  openField_ = -1;
}

}  // namespace sw::session
