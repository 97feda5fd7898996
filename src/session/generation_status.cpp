#include "session/generation_status.h"

namespace sw::session {

GenerationStatus GenerationStatusFor(generate::GenerationPhase phase, int pagesStarted,
                                     std::optional<int> pages) {
  if (phase == generate::GenerationPhase::kSaving) return {"Sparar arbetsboken …", true};
  std::string text = "Skapar sidor …";
  if (pagesStarted > 0) {
    text += " " + std::to_string(pagesStarted);
    if (pages && *pages >= pagesStarted) text += " av " + std::to_string(*pages);
  }
  return {text, false};
}

}  // namespace sw::session
