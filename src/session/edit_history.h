#pragma once
// The undo and redo history of the preview edits: deleted placements, inserted and removed manual
// page breaks and the title-block texts. A step keeps the whole edited state as it was (the report
// table with its marks, and the thirty texts), so undoing brings back exactly what the user saw,
// marks included, whatever the edit rules did. A new load starts a new history.
#include <array>
#include <string>
#include <vector>

#include "report/report_table.h"
#include "templates/field_panel.h"

namespace sw::session {

struct EditedState {
  report::ReportTable table;
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
  // Swaps `current` with the state of the last step; false when there is none.
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
