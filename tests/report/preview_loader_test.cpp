#include "report/preview_loader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "memory_settings.h"
#include "table_rows.h"
#include "temp_dir.h"

namespace sw::report {
namespace {

using testing::DataFile;

// Records the load's calls to the window in the order they come.
class WindowDouble final : public LoadProgress {
 public:
  std::vector<std::string> calls;
  void Begin(int lineCount) override { calls.push_back("Begin " + std::to_string(lineCount)); }
  void Step(int) override {}
  void End() override { calls.push_back("End"); }
};

class PreviewVoltDumpTest : public ::testing::Test {
 protected:
  PreviewContext Context(std::string path) {
    return PreviewContext{.dumpPath = std::move(path),
                          .settings = settings,
                          .progress = &window,
                          .layoutColumns = [this] { window.calls.push_back("layout"); },
                          .reloadTemplateLayout = [this] { window.calls.push_back("template"); },
                          .showPageBreaks = [this] { window.calls.push_back("page breaks"); }};
  }
  static std::string Placements() { return DataFile("dumps/placements_windows1252.txt").string(); }

  testing::MemorySettings settings;
  WindowDouble window;
  ReportTable table;
};

TEST_F(PreviewVoltDumpTest, LoadsTheDumpThenLaysOutAndRunsTheHooksInOrder) {
  const auto loaded = PreviewVoltDump(table, Context(Placements()));
  EXPECT_EQ(loaded.status, PreviewResult::kLoaded);
  EXPECT_TRUE(loaded.notices.empty());
  EXPECT_EQ(window.calls, (std::vector<std::string>{"Begin 8", "End", "layout", "template", "page breaks"}));
  // How the rows read is the dump reader's rule (dump_reader_test); here they reach the table.
  EXPECT_EQ(ReportRows(table).size(), 7u);
  EXPECT_EQ(RowLine(table, 2), "|X1|1|K\u00e4llare/2|W1|2.5");
}

struct CleanupSettingsCase {
  const char* useSlashTwo;  // nullptr: not stored
  const char* includeEmptyRows;
  std::vector<std::string> column3;  // column 3 of every report row
  friend void PrintTo(const CleanupSettingsCase& c, std::ostream* out) {
    *out << "UseSlashTwo " << (c.useSlashTwo ? c.useSlashTwo : "(none)") << ", IncludeEmptyRows "
         << (c.includeEmptyRows ? c.includeEmptyRows : "(none)");
  }
};

class CleanupSettings : public PreviewVoltDumpTest,
                        public ::testing::WithParamInterface<CleanupSettingsCase> {};

TEST_P(CleanupSettings, OnlyAnExactZeroRunsACleanup) {
  const CleanupSettingsCase& c = GetParam();
  if (c.useSlashTwo) settings.SaveAppSetting("UseSlashTwo", c.useSlashTwo);
  if (c.includeEmptyRows) settings.SaveAppSetting("IncludeEmptyRows", c.includeEmptyRows);
  PreviewVoltDump(table, Context(Placements()));
  std::vector<std::string> column3;
  for (int row = 1; row < table.Rows(); ++row) column3.emplace_back(table.Text(row, 3));
  EXPECT_EQ(column3, c.column3);
}

const std::vector<std::string> kAsRead = {"", "K\u00e4llare/2", "Pump/2", "", "", "L\u00e5da", ""};

INSTANTIATE_TEST_SUITE_P(
    PreviewVoltDump, CleanupSettings,
    ::testing::Values(
        CleanupSettingsCase{nullptr, nullptr, kAsRead}, CleanupSettingsCase{"1", "1", kAsRead},
        CleanupSettingsCase{"", "", kAsRead},  // an empty value reads as the default
        CleanupSettingsCase{"false", " 0", kAsRead},
        CleanupSettingsCase{"0", nullptr, {"", "K\u00e4llare", "Pump", "", "", "L\u00e5da", ""}},
        // The blank title row is not there: the dump opens with a title line.
        CleanupSettingsCase{nullptr, "0", {"", "K\u00e4llare/2", "Pump/2", "", "L\u00e5da", ""}},
        // "/2" goes first, so the row that held only "/2" texts is then empty too.
        CleanupSettingsCase{"0", "0", {"", "K\u00e4llare", "Pump", "", "L\u00e5da"}}));

TEST_F(PreviewVoltDumpTest, DoesNothingWhileThePickersAreFilled) {
  table.SetRows(3);
  table.SetText(2, 0, "kvar");
  PreviewContext context = Context(Placements());
  context.refreshing = true;
  EXPECT_EQ(PreviewVoltDump(table, context).status, PreviewResult::kSkipped);
  EXPECT_EQ(table.Rows(), 3);
  EXPECT_EQ(table.Text(2, 0), "kvar");
  EXPECT_TRUE(window.calls.empty());
}

TEST_F(PreviewVoltDumpTest, EmptyPathLeavesOnlyTheHeadingRowSilently) {
  table.SetRows(3);
  table.SetText(0, 0, "Rubrik");
  const auto loaded = PreviewVoltDump(table, Context(""));
  EXPECT_EQ(loaded.status, PreviewResult::kNoDump);
  EXPECT_TRUE(loaded.notices.empty());
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(table.Text(0, 0), "Rubrik");
  EXPECT_TRUE(window.calls.empty());
}

TEST_F(PreviewVoltDumpTest, MissingFileOrFolderIsReportedAndNothingElseRuns) {
  testing::TempDir temp;
  struct Case {
    std::string path;
    PreviewResult status;
    base::Notice notice;
  };
  const std::string missing = (temp.path() / "saknas.txt").string();
  const std::string folder = temp.path().string();
  const std::vector<Case> cases = {
      {missing,
       PreviewResult::kNotFound,
       {"Hittar ej filen " + missing + ".", "Fel", base::MessageIcon::kInformation}},
      {folder,
       PreviewResult::kUnreadable,
       {"Kan ej l\u00e4sa filen " + folder + " eftersom det inte \u00e4r n\u00e5gon vanlig fil.", "Filfel",
        base::MessageIcon::kCritical}},
  };
  for (const auto& c : cases) {
    table.SetRows(4);
    const auto loaded = PreviewVoltDump(table, Context(c.path));
    EXPECT_EQ(table.Rows(), 1);
    EXPECT_EQ(loaded.status, c.status);
    EXPECT_EQ(loaded.notices, std::vector<base::Notice>{c.notice});
  }
  EXPECT_TRUE(window.calls.empty());
}

TEST_F(PreviewVoltDumpTest, UnreadableFileIsAFileErrorNotACrash) {
  testing::TempDir temp;
  const auto path = temp.Write("l\u00e5st.txt", "%T\n");
  std::filesystem::permissions(path, std::filesystem::perms::none);
  if (std::ifstream(path).is_open()) GTEST_SKIP() << "this account reads files whatever their permissions";
  const auto loaded = PreviewVoltDump(table, Context(path.string()));
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(loaded.status, PreviewResult::kUnreadable);
  EXPECT_EQ(loaded.notices, (std::vector<base::Notice>{{"Kan ej l\u00e4sa filen " + path.string() + ".",
                                                        "Filfel", base::MessageIcon::kCritical}}));
}

}  // namespace
}  // namespace sw::report
