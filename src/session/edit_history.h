#pragma once
// The undo and redo history of the preview edits: deleted placements, inserted and removed manual
// page breaks and the title-block texts. A step keeps the edited state as it was: the thirty texts,
// and for an edit of the grid the whole report table with its marks, so undoing brings back exactly
// what the user saw, marks included, whatever the edit rules did. A new load starts a new history.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "report/report_table.h"
#include "templates/field_panel.h"

namespace sw::session {

struct EditedState {
  std::optional<report::ReportTable> table;  // none: the step left the table as it was
  std::array<std::string, templates::kFieldCount> texts;
};

class EditHistory {
 public:
  bool CanUndo() const { return !undo_.empty(); }
  bool CanRedo() const { return !redo_.empty(); }
  int UndoSteps() const { return static_cast<int>(undo_.size()); }
  int RedoSteps() const { return static_cast<int>(redo_.size()); }

  // `before` is the state an edit is about to change: it becomes the step to undo and whatever was
  // undone can no longer be redone.
  void Record(EditedState before);
  // Whether the step Undo (Redo) would take back holds a table, nothing when there is none.
  std::optional<bool> UndoHoldsTable() const;
  std::optional<bool> RedoHoldsTable() const;
  // Swaps `current` with the state of the last step; false when there is none. `current` holds a
  // table exactly when the step does.
  bool Undo(EditedState& current);
  bool Redo(EditedState& current);
  void Clear();

  // Typing into one text box makes one step until the box is left: the box being typed into, -1 for
  // none.
  int OpenField() const { return openField_; }
  void OpenFieldStep(int index) { openField_ = index; }
  void CloseFieldStep() { openField_ = -1; }

 private:
  std::vector<EditedState> undo_;
  std::vector<EditedState> redo_;
  int openField_ = -1;
};

}  // namespace sw::session
