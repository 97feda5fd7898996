#include "discovery/combo_picker.h"

#include "base/strings.h"

namespace sw::discovery {

void ComboPicker::Clear() {
  items.clear();
  text.clear();
  selected = -1;
}

void ComboPicker::SelectIndex(int index) {
  if (index < 0 || index >= Count()) return;
  selected = index;
  text = items[static_cast<std::size_t>(index)];
}

void ComboPicker::SetText(std::string newText) {
  text = std::move(newText);
  selected = -1;
  for (int i = 0; i < Count(); ++i) {
    if (base::EqualsIgnoreCase(items[static_cast<std::size_t>(i)], text)) {
      selected = i;
      break;
    }
  }
}

}  // namespace sw::discovery
