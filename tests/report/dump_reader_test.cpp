#include "report/dump_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/text_codec.h"
#include "table_rows.h"
#include "temp_dir.h"

namespace sw::report {
namespace {

struct RowRuleCase {
  const char* name;
  std::string bytes;
  std::vector<std::string> rows;  // report rows, cells joined by '|'
  int cols;
  friend void PrintTo(const RowRuleCase& c, std::ostream* out) { *out << c.name; }
};

class RowRules : public ::testing::TestWithParam<RowRuleCase> {};

TEST_P(RowRules, ReadsRowsAndColumns) {
  const RowRuleCase& c = GetParam();
  ReportTable table;
  LoadDumpText(table, c.bytes);
  EXPECT_EQ(ReportRows(table), c.rows);
  EXPECT_EQ(table.Cols(), c.cols);
}

// A file is read in pieces; lines, CR LF pairs and characters cut at a piece's end must not show.
TEST_P(RowRules, ReadsTheSameRowsFromAFileInPieces) {
  const RowRuleCase& c = GetParam();
  const testing::TempDir folder;
  const auto path = folder.Write("volt_report.txt", c.bytes);
  ReportTable whole;
  const int lines = LoadDumpText(whole, c.bytes).lineCount;
  for (const std::size_t piece : {4, 5, 7, 64, 1 << 20}) {
    ReportTable table;
    const auto result = LoadDumpFile(table, path, nullptr, piece);
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->lineCount, lines) << piece;
    EXPECT_EQ(ReportRows(table), c.rows) << piece;
    EXPECT_EQ(table.Cols(), c.cols) << piece;
    for (int row = 1; row < table.Rows(); ++row)
      EXPECT_EQ(PaintedColumns(table, row, kTitleGreen), PaintedColumns(whole, row, kTitleGreen)) << piece;
  }
}

INSTANTIATE_TEST_SUITE_P(
    DumpReader, RowRules,
    ::testing::Values(
        RowRuleCase{"TitleFirstNeedsNoBlankRow", "%Plac 1\n\tA\tB\tC\n", {"Plac 1|||", "|A|B|C"}, 4},
        RowRuleCase{"BlankRowBeforeFirstDataLine", "Def\tX\n\tA\tB\n", {"||", "|A|B"}, 3},
        RowRuleCase{"AllPreambleGivesNoRows", "Rapport\tFBLTAY\nDatum\nSlut\t1\t2\n", {}, 3},
        RowRuleCase{"FirstFieldOfABlankIsNotEmpty", " \tA\tB\n%T\n", {"T||"}, 3},
        RowRuleCase{"OneFieldLineIsPreamble", "\n\n%T\n", {"T"}, 1},
        RowRuleCase{"TitleLosesEveryPercent", "%Rubrik%%\n", {"Rubrik"}, 1},
        RowRuleCase{"TabStaysInsideTitleAndWidens", "%  Pl\tats  %\n", {"Pl\tats|"}, 2},
        RowRuleCase{"PercentNotFirstIsNoTitle", "%T\n\t5%\tx\n", {"T||", "|5%|x"}, 3},
        // "\tA" has upper bound 1 = column count 1: "A" has no column yet and is lost.
        RowRuleCase{"LastFieldDroppedWhenOneWider", "\tA\n", {"|", "|"}, 2},
        RowRuleCase{"LastFieldDroppedLater", "%T\n\tA\tB\n\tC\tD\tE\n", {"T|||", "|A|B|", "|C|D|"}, 4},
        RowRuleCase{"FieldsTrimmedOfSpacesOnly", "%T\n\t  a  \t b\v\n", {"T||", "|a|b\v"}, 3},
        RowRuleCase{"EmptyFileKeepsOneColumn", "", {}, 1},
        RowRuleCase{
            "SpacesOnlyAndEmptyFieldsAtTheEnd", "%T\n\t \tA\t  \t\n\t\t\n", {"T||||", "||A||", "||||"}, 5},
        RowRuleCase{"LongFieldsInADataLine",
                    "%T\n\t" + std::string(300, 'm') + "\t" + std::string(70000, 'h') + " \n",
                    {"T||", "|" + std::string(300, 'm') + "|" + std::string(70000, 'h')},
                    3},
        RowRuleCase{"FortyFieldsInADataLine",
                    "%T\n" + std::string(39, '\t') + "x\n",
                    {"T" + std::string(39, '|'), std::string(39, '|') + "x"},
                    40},
        RowRuleCase{"PreambleWiderThanData", "P\t1\t2\t3\t4\n\tA\tB\n", {"||||", "|A|B||"}, 5},
        RowRuleCase{"EmptyLinesAfterStartAreRows", "%T\n\n\tA\tB\n", {"T||", "||", "|A|B"}, 3},
        RowRuleCase{"DataLineWithFirstFieldAfterStart", "%T\nNamn\tA\tB\n", {"T||", "Namn|A|B"}, 3},
        RowRuleCase{
            "CrLfCrAndLfAllEndLines", "%T\r\n\tA\tx\r\tB\tx\n\tC\tx", {"T||", "|A|x", "|B|x", "|C|x"}, 3},
        RowRuleCase{"LineEndAtEndOpensNoLine", "%T\r\n\tA\tx\r\n", {"T||", "|A|x"}, 3},
        RowRuleCase{"LfCrIsTwoLineEnds", "%T\n\r\tA\tx", {"T||", "||", "|A|x"}, 3},
        RowRuleCase{"Windows1252Letters",
                    "%Pl\xe5ts \x80\n\t\xe4\t\xf6\xc5\n",
                    {"Pl\u00e5ts \u20ac||", "|\u00e4|\u00f6\u00c5"},
                    3},
        RowRuleCase{
            "Utf8ByteOrderMark", "\xEF\xBB\xBF%Pl\u00e5ts\n\t\u00e4\tx\n", {"Pl\u00e5ts||", "|\u00e4|x"}, 3},
        RowRuleCase{"Utf8MarkWithAnsiBytesStillReads", "\xEF\xBB\xBF%Pl\xe5ts\n", {"Pl\u00e5ts"}, 1},
        RowRuleCase{"Utf16LeByteOrderMark",
                    "\xFF\xFE" + base::EncodeUtf16Le("%Pl\u00e5ts\r\n\t\u00e4\tx\r\n"),
                    {"Pl\u00e5ts||", "|\u00e4|x"},
                    3}),
    [](const ::testing::TestParamInfo<RowRuleCase>& param) { return std::string(param.param.name); });

TEST(DumpReader, TitleRowsAreGreenOnlyOnTheColumnsPresentWhenAdded) {
  ReportTable table;
  LoadDumpText(table, "%A\n\tB\tC\tD\n%E\n\tF\tG\tH\n");
  ASSERT_EQ(table.Rows(), 5);
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "1000");
  EXPECT_EQ(PaintedColumns(table, 2, kTitleGreen), "0000");
  EXPECT_EQ(PaintedColumns(table, 3, kTitleGreen), "1111");
  EXPECT_EQ(table.ClassOf(1), RowClass::kPlacementHead);
  EXPECT_EQ(table.ClassOf(2), RowClass::kOrdinary);
}

TEST(DumpReader, BlankTitleRowIsAManualBreakGreenOnTheOldColumns) {
  ReportTable table;
  LoadDumpText(table, "\tA\tB\n");
  EXPECT_EQ(table.ClassOf(1), RowClass::kManualBreak);
  EXPECT_EQ(PaintedColumns(table, 1, kTitleGreen), "100");
  EXPECT_EQ(table.BackColour(2, 0), kDefaultBack);
}

TEST(DumpReader, ColumnCountOfThePreviousLoadIsWhereReadingStarts) {
  ReportTable table;
  table.SetCols(5);
  table.SetText(0, 4, "Rubrik");
  LoadDumpText(table, "\tA\n");
  // With five columns the two-field line fits whole, and the blank row is green on all five.
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"|", "|A"}));
  EXPECT_EQ(table.BackColour(1, 1), kTitleGreen);
  EXPECT_EQ(table.Cols(), 2);
}

TEST(DumpReader, ReplacesEarlierRowsAndKeepsTheHeadingRow) {
  ReportTable table;
  table.SetText(0, 0, "Rubrik");
  LoadDumpText(table, "%A\n\tB\tC\tD\n");
  LoadDumpText(table, "%X\n");
  EXPECT_EQ(ReportRows(table), (std::vector<std::string>{"X"}));
  EXPECT_EQ(table.Text(0, 0), "Rubrik");
}

class RecordingProgress final : public LoadProgress {
 public:
  std::vector<std::string> calls;
  std::vector<int> steps;
  void Begin(int lineCount) override { calls.push_back("Begin " + std::to_string(lineCount)); }
  void Step(int linesDone) override { steps.push_back(linesDone); }
  void End() override { calls.push_back("End"); }
};

TEST(DumpReader, ProgressReportsLineCountThenAboutEveryPercentAndTheLastLine) {
  std::string dump = "%T\n";
  for (int i = 1; i < 250; ++i) dump += "\tA\tB\n";
  ReportTable table;
  RecordingProgress progress;
  EXPECT_EQ(LoadDumpText(table, dump, &progress).lineCount, 250);
  EXPECT_EQ(progress.calls, (std::vector<std::string>{"Begin 250", "End"}));
  ASSERT_FALSE(progress.steps.empty());
  EXPECT_EQ(progress.steps.back(), 249);
  EXPECT_LE(progress.steps.size(), 126u);
  EXPECT_TRUE(std::is_sorted(progress.steps.begin(), progress.steps.end()));

  // An empty dump still begins and ends.
  RecordingProgress empty;
  LoadDumpText(table, "", &empty);
  EXPECT_EQ(empty.calls, (std::vector<std::string>{"Begin 0", "End"}));
  EXPECT_TRUE(empty.steps.empty());
}

}  // namespace
}  // namespace sw::report
