#include "preview/preview_controls.h"

#include <algorithm>
#include <cmath>

namespace sw::preview {

std::vector<int> LayOutColumnWidths(std::vector<int> widths, int gridWidth) {
  if (widths.empty()) return widths;
  if (widths[0] > 800) widths[0] = 800;
  if (widths.size() == 1) {
    widths[0] = gridWidth - 120;
    return widths;
  }
  const double share = static_cast<double>(gridWidth - widths[0]) / static_cast<double>(widths.size() - 1);
  // std::nearbyint rounds halves to even in the default rounding mode, as the assignment did.
  const int width = static_cast<int>(std::nearbyint(share));
  for (std::size_t col = 1; col < widths.size(); ++col) widths[col] = width;
  return widths;
}

bool SheetNumberKeyPasses(int keyCode) {
  return keyCode == 8 || keyCode == 9 || keyCode == 13 || (keyCode >= 48 && keyCode <= 59);
}

bool SheetNumberTextPasses(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 48 && c <= 59; });
}

std::string FieldTextOnCommit(std::string_view text, const templates::ShortDateSource& today) {
  return text == "." ? today() : std::string(text);
}

int NextFieldOnEnter(const templates::FieldPanel& fields, int index) {
  if (index < 0 || index >= templates::kFieldCount - 1) return 0;
  return fields.entries[static_cast<std::size_t>(index) + 1].enabled ? index + 1 : 0;
}

int PressEnterInField(templates::FieldPanel& fields, int index, const templates::ShortDateSource& today) {
  if (index >= 0 && index < templates::kFieldCount) {
    auto& entry = fields.entries[static_cast<std::size_t>(index)];
    entry.text = FieldTextOnCommit(entry.text, today);
  }
  return NextFieldOnEnter(fields, index);
}

}  // namespace sw::preview
