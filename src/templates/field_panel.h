#pragma once
// The common-text panel beside the preview (labels lblField, text boxes txtField), without widgets:
// the GUI mirrors these entries, the command line and tests read them.
#include <array>
#include <cstdint>
#include <string>

namespace sw::templates {

inline constexpr int kFieldCount = 30;

struct FieldEntry {
  std::string caption;  // the label's text
  std::string text;     // the box's text
  bool enabled = false;
  std::uint32_t backColour = 0;  // 0: left as it was designed
};

struct FieldPanel {
  std::array<FieldEntry, kFieldCount> entries;

  // Every label and box emptied and disabled (colours stay).
  void Clear() {
    for (auto& entry : entries) {
      entry.caption.clear();
      entry.text.clear();
      entry.enabled = false;
    }
  }
};

}  // namespace sw::templates
