#include "session/edit_history.h"

#include <utility>

namespace sw::session {

void EditHistory::Record(EditedState before) {
  undo_.push_back(std::move(before));
  redo_.clear();
}

std::optional<bool> EditHistory::UndoHoldsTable() const {
  if (undo_.empty()) return std::nullopt;
  return undo_.back().table.has_value();
}

std::optional<bool> EditHistory::RedoHoldsTable() const {
  if (redo_.empty()) return std::nullopt;
  return redo_.back().table.has_value();
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
