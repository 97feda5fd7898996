// What the status bar says while a generation runs.
#include <gtest/gtest.h>

#include "session/generation_status.h"

namespace sw::session {
namespace {

using generate::GenerationPhase;

TEST(GenerationStatusTest, SaysWhatTheRunIsBusyWith) {
  EXPECT_EQ(GenerationStatusFor(GenerationPhase::kMakingPages, 0, 12).text, "Skapar sidor …");
  EXPECT_EQ(GenerationStatusFor(GenerationPhase::kMakingPages, 3, 12).text, "Skapar sidor … 3 av 12");
  // No count to show without the template's page length, nor one the run has already passed.
  EXPECT_EQ(GenerationStatusFor(GenerationPhase::kMakingPages, 3, std::nullopt).text, "Skapar sidor … 3");
  EXPECT_EQ(GenerationStatusFor(GenerationPhase::kMakingPages, 13, 12).text, "Skapar sidor … 13");
  EXPECT_FALSE(GenerationStatusFor(GenerationPhase::kMakingPages, 3, 12).saving);

  const auto saving = GenerationStatusFor(GenerationPhase::kSaving, 12, 12);
  EXPECT_EQ(saving.text, "Sparar arbetsboken …");
  EXPECT_TRUE(saving.saving);
}

}  // namespace
}  // namespace sw::session
