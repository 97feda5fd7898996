#pragma once
// What the window says while a generation runs: which phase it is in and, while the pages are made,
// how far it has got.
#include <optional>
#include <string>

#include "generate/generate_workbook.h"

namespace sw::session {

struct GenerationStatus {
  std::string text;     // for the status bar
  bool saving = false;  // the workbook is being saved: no page count moves any more
};

// `pagesStarted` of `pages` (nothing: the template gives no count, as a dynamic-length one).
GenerationStatus GenerationStatusFor(generate::GenerationPhase phase, int pagesStarted,
                                     std::optional<int> pages);

}  // namespace sw::session
