#include "base/windows_path.h"

#include <gtest/gtest.h>

#include "temp_dir.h"

namespace sw::base {
namespace {

class WindowsPathTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_.Write("Mallar/Plan.XLSX", "x");
    dir_.Write("Mallar/plan.ini", "y");
    dir_.Write("Mallar/Sub/Data.txt", "z");
  }
  std::string Root() const { return dir_.path().string(); }
  testing::TempDir dir_;
};

// Resolving case and mapped drives is the host side's work; on Windows the text is used as it stands.
using PosixOnlyWindowsPathTest = WindowsPathTest;

TEST_F(PosixOnlyWindowsPathTest, BackslashesSeparateAndCaseIsIgnoredWhereTheSpellingIsMissing) {
  WindowsPathResolver resolver;
  EXPECT_EQ(resolver.Resolve(Root() + "\\mallar\\SUB\\data.TXT"),
            dir_.path() / "Mallar" / "Sub" / "Data.txt");
  EXPECT_EQ(resolver.Resolve(Root() + "\\\\Mallar\\"), dir_.path() / "Mallar");  // no empty parts
  // Below a missing part everything keeps its spelling.
  EXPECT_EQ(resolver.Resolve(Root() + "\\mallar\\Saknas\\X.ini"),
            dir_.path() / "Mallar" / "Saknas" / "X.ini");
  EXPECT_TRUE(WindowsFileExists(Root() + "\\mallar\\PLAN.ini"));
  EXPECT_FALSE(WindowsFileExists(Root() + "\\mallar"));
  EXPECT_TRUE(WindowsFolderExists(Root() + "\\MALLAR"));
}

// A run keeps its folders' listings: other cases are still found, the run's own new files too, but a
// file another program adds under another case only once the run is over.
TEST_F(PosixOnlyWindowsPathTest, ListingsKeptForARunFindOtherCasesAndTheRunsOwnFiles) {
  dir_.Write("Mallar/\u00c5tg\u00e4rd.txt", "a");
  WindowsPathResolver resolver;
  {
    const FolderListingCache listings;
    EXPECT_EQ(resolver.Resolve(Root() + "\\mallar\\PLAN.xlsx"), dir_.path() / "Mallar" / "Plan.XLSX");
    EXPECT_EQ(resolver.Resolve(Root() + "\\Mallar\\\u00e5TG\u00c4RD.txt"),
              dir_.path() / "Mallar" / "\u00c5tg\u00e4rd.txt");
    dir_.Write("Mallar/Lista-1.xlsx", "run");
    EXPECT_EQ(resolver.Resolve(Root() + "\\Mallar\\Lista-1.xlsx"), dir_.path() / "Mallar" / "Lista-1.xlsx");
    dir_.Write("Mallar/LISTA-2.XLSX", "other");
    EXPECT_EQ(resolver.Resolve(Root() + "\\Mallar\\Lista-2.xlsx"), dir_.path() / "Mallar" / "Lista-2.xlsx");
    EXPECT_EQ(resolver.Resolve(Root() + "\\Mallar\\Saknas.xlsx"), dir_.path() / "Mallar" / "Saknas.xlsx");
  }
  EXPECT_EQ(resolver.Resolve(Root() + "\\Mallar\\Lista-2.xlsx"), dir_.path() / "Mallar" / "LISTA-2.XLSX");
}

TEST_F(PosixOnlyWindowsPathTest, MappedDriveStandsForAHostFolder) {
  WindowsPathResolver resolver;
  EXPECT_EQ(resolver.Resolve("C:\\Mallar\\Plan.xlsx"), std::filesystem::path("C:") / "Mallar" / "Plan.xlsx");
  resolver.MapDrive('c', dir_.path());
  EXPECT_EQ(resolver.Resolve("C:\\MALLAR\\plan.xlsx"), dir_.path() / "Mallar" / "Plan.XLSX");
  EXPECT_EQ(resolver.Resolve("c:mallar"), dir_.path() / "Mallar");
  resolver.MapDrive('C', {});
  EXPECT_EQ(resolver.Resolve("C:\\x"), std::filesystem::path("C:") / "x");
}

TEST_F(WindowsPathTest, FolderListingHoldsFilesInNameOrderIgnoringCase) {
  dir_.Write("Mallar/a.xls", "");
  dir_.Write("Mallar/B.xls", "");
  EXPECT_EQ(ListFolderFiles(Root() + "\\MALLAR"),
            (std::vector<std::string>{"a.xls", "B.xls", "plan.ini", "Plan.XLSX"}));
  EXPECT_TRUE(ListFolderFiles(Root() + "\\Saknas").empty());
}

}  // namespace
}  // namespace sw::base
