#include "preview/export_fixup.h"

#include <gtest/gtest.h>

#include "fake_environment.h"
#include "temp_dir.h"

namespace sw::preview {
namespace {

using report::kTitleGreen;

// A table as the FBLTAY export arrives: the placement name in column 0, its fields from column 0 too.
report::ReportTable ExportTable() {
  report::ReportTable table;
  table.SetCols(2);
  table.SetRows(4);
  table.SetText(1, 0, "+A1");
  table.SetRowBackColour(1, 0, 1, kTitleGreen);
  table.SetText(2, 0, "K1");
  table.SetText(2, 1, "X1:1");
  table.SetRowBackColour(3, 0, 1, kTitleGreen);  // a manual page break
  return table;
}

class ExportFixupTest : public ::testing::Test {
 protected:
  void WithCadIni(std::string_view text) { windir_.Write("VOLTARIS.INI", text); }

  testing::TempDir windir_;
  testing::FakeEnvironment environment_{{"windir", windir_.path().string()}};
};

TEST_F(ExportFixupTest, OfferedOnlyWhenTheConditionsHold) {
  struct Case {
    const char* cadIni;
    bool force;
    const char* reportId;
    bool offered;
  };
  for (const auto& c : std::vector<Case>{
           {"[CNCHSCR]\nA=1\n", false, "fbltay", true},
           {"[CNCHSCR]\nA=1\n", false, "PANEL", false},
           {"[CNCHSCR]\n", false, "FBLTAY", false},
           {"[Other]\nA=1\n", false, "FBLTAY", false},
           {nullptr, false, "FBLTAY", false},
           {nullptr, true, "", true},
           {"[CNCHSCR]\nA=1\n", true, "PANEL", true},
       }) {
    std::filesystem::remove(windir_.path() / "VOLTARIS.INI");
    if (c.cadIni) WithCadIni(c.cadIni);
    EXPECT_EQ(ExportRepairOffered(c.force, c.reportId, environment_), c.offered)
        << c.reportId << " force " << c.force;
  }
  EXPECT_EQ(ExportRepairQuestion(), (base::Notice{"Infoga kolumn i yttre förbindningstabell?",
                                                  "Justera fel i exportfil", base::MessageIcon::kQuestion}));
}

TEST(InsertLeadingColumnTest, PlacementNamesMoveIntoTheNewColumn) {
  report::ReportTable table = ExportTable();
  InsertLeadingColumn(table);
  ASSERT_EQ(table.Cols(), 3);
  // The placement head keeps its name in column 0, green.
  EXPECT_EQ(table.Text(1, 0), "+A1");
  EXPECT_EQ(table.Text(1, 1), "");
  EXPECT_EQ(table.BackColour(1, 0), kTitleGreen);
  // A data row moves one column right and column 0 is empty.
  EXPECT_EQ(table.Text(2, 0), "");
  EXPECT_EQ(table.Text(2, 1), "K1");
  EXPECT_EQ(table.Text(2, 2), "X1:1");
  EXPECT_NE(table.BackColour(2, 0), kTitleGreen);
  EXPECT_EQ(table.ClassOf(3), report::RowClass::kManualBreak);
}

}  // namespace
}  // namespace sw::preview
