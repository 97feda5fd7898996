#pragma once
// An editable drop-down list of the main window (cboRdsDir, cboVoltDump) without its widget. Its text
// may name something that is not in the list: a remembered path stands in the box as it was saved.
#include <cstdint>
#include <string>
#include <vector>

#include "base/system_colours.h"

namespace sw::discovery {

struct ComboPicker {
  std::vector<std::string> items;
  std::string text;
  int selected = -1;  // index into items, −1 when the text is no list entry
  std::uint32_t backColour = base::kSystemWindowBackground;  // the pickers' own colour

  int Count() const { return static_cast<int>(items.size()); }
  // Empties the list and the text; clearing is no choice, so it raises no change handling.
  void Clear();
  void Add(std::string item) { items.push_back(std::move(item)); }
  // Chooses list entry `index`; out of range chooses nothing.
  void SelectIndex(int index);
  // Puts `newText` in the box; the list entry equal to it ignoring case (the first such) becomes the
  // selected one, as a Windows combo box finds it.
  void SetText(std::string newText);
};

}  // namespace sw::discovery
