// A command that runs out of memory ends with the program's message and exit code 1, not an abort.
#include "cli/memory_guard.h"

#include <gtest/gtest.h>

#include <new>
#include <sstream>
#include <vector>

namespace sw::cli {
namespace {

TEST(MemoryGuardTest, ExhaustedMemoryIsToldWithWhatWasBeingDone) {
  std::ostringstream err;
  const int code = RunGuardingMemory(err, "kontroll av mallen /mallar/Stor.xlsx", []() -> int {
    // As a vector larger than the address space would fail.
    throw std::bad_alloc();
  });
  EXPECT_EQ(code, 1);
  EXPECT_EQ(err.str(), "Fel: 7 - Slut på minne vid kontroll av mallen /mallar/Stor.xlsx.\n");
}

TEST(MemoryGuardTest, ACommandThatFitsKeepsItsOwnExitCodeAndSaysNothing) {
  std::ostringstream err;
  EXPECT_EQ(RunGuardingMemory(err, "generering av /ut/Lista.xlsx", [] { return 2; }), 2);
  EXPECT_EQ(RunGuardingMemory(err, "generering av /ut/Lista.xlsx", [] { return 0; }), 0);
  EXPECT_EQ(err.str(), "");
}

}  // namespace
}  // namespace sw::cli
