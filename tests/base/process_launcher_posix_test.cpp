// Running a program and waiting for it, as the standard-look reset does with regedit on Windows.
#include <gtest/gtest.h>

#include "base/process_launcher.h"

namespace sw::base {
namespace {

TEST(PosixOnlyProcessLauncherTest, RunAndWaitTellsWhetherTheProgramSucceeded) {
  const auto launcher = CreateSystemProcessLauncher();
  EXPECT_TRUE(launcher->RunMinimisedAndWait("true"));
  EXPECT_TRUE(launcher->RunMinimisedAndWait("  test  -n  word "));
  EXPECT_FALSE(launcher->RunMinimisedAndWait("false"));
  EXPECT_FALSE(launcher->RunMinimisedAndWait("test -z word"));
  EXPECT_FALSE(launcher->RunMinimisedAndWait("no-such-program-for-sheetwright"));
  EXPECT_FALSE(launcher->RunMinimisedAndWait(""));
}

}  // namespace
}  // namespace sw::base
