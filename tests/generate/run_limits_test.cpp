// Runs that cannot give a whole result: a report whose page or row numbers would pass the 16-bit
// counters is refused before the target is asked for, and a run whose page failed saves nothing over
// the earlier result and says so once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "base/windows_path.h"
#include "generate/counter_limit.h"
#include "generate/run_error.h"
#include "temp_dir.h"
#include "generation_fixture.h"

namespace sw::generate {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

templates::TemplateDefinition Layout(int startRow, int endRow, bool infinite) {
  templates::TemplateDefinition definition;
  definition.StartRow = static_cast<std::int16_t>(startRow);
  definition.EndRow = static_cast<std::int16_t>(endRow);
  definition.Infinite = infinite;
  return definition;
}

TEST(CounterLimitTest, PagesFitWhileTheLastPagesNextNumberDoes) {
  const auto pages = Layout(10, 39, false);
  EXPECT_EQ(CounterLimitRefusal({.pages = 32766}, pages, 1), "");
  EXPECT_EQ(CounterLimitRefusal({.pages = 8}, pages, 32759), "");
  EXPECT_EQ(CounterLimitRefusal({.pages = 33334}, pages, 1),
            "Rapporten ger 33334 sidor från sidnummer 1, men sidnumren räcker bara till 32766.\rDela upp "
            "rapporten och generera den i flera delar, eller börja på ett lägre sidnummer.");
  EXPECT_NE(CounterLimitRefusal({.pages = 32767}, pages, 1), "");
  EXPECT_NE(CounterLimitRefusal({.pages = 8}, pages, 32760), "");
}

TEST(CounterLimitTest, DynamicLengthRowsFitWhileTheRowBelowTheLastDoes) {
  const auto dynamic = Layout(10, 9999, true);
  EXPECT_EQ(CounterLimitRefusal({.dataRows = 32757}, dynamic, 1), "");
  EXPECT_EQ(CounterLimitRefusal({.dataRows = 1'000'000}, dynamic, 1),
            "Rapporten har 1000000 rader, men en mall med dynamisk sidlängd rymmer bara 32757 rader från "
            "rad 10.\rDela upp rapporten och generera den i flera delar.");
  EXPECT_NE(CounterLimitRefusal({.dataRows = 32758}, dynamic, 1), "");
  // Pages are no concern of a dynamic sheet, whatever the start number.
  EXPECT_EQ(CounterLimitRefusal({.pages = 40000, .dataRows = 5}, dynamic, 32767), "");
}

class RunLimitsTest : public ::testing::Test, public GenerationFixture {
 public:
  void AddPages(int pages) {
    for (int page = 1; page <= pages; ++page) AddPlacement("+A" + std::to_string(page), page, 1);
  }
};

TEST_F(RunLimitsTest, MeasuresPagesAndRowsAsTheRunCountsThem) {
  AddPlacement("+A1", 1, 7);  // three pages of three rows
  AddPlacement("+A2", 8, 2);  // one more
  EXPECT_EQ(MeasureRun(table, Layout(10, 12, false)).pages, 4);
  EXPECT_EQ(MeasureRun(table, Layout(10, 12, true)).dataRows, 9);
}

TEST_F(RunLimitsTest, PagesPastTheCounterAreRefusedBeforeTheTargetIsAskedFor) {
  AddPages(8);
  inputs.sheetNumberText = "32760";
  const auto outcome = Generate();
  EXPECT_FALSE(outcome.completed);
  EXPECT_THAT(MessageTexts(),
              ElementsAre("Fel: Rapporten ger 8 sidor från sidnummer 32760, men sidnumren räcker bara till "
                          "32766.\rDela upp rapporten och generera den i flera delar, eller börja på ett "
                          "lägre sidnummer."));
  EXPECT_EQ(dialogs.fileAnswers.size(), 1u);  // the target was never asked for
  EXPECT_EQ(recording.applicationsCreated(), 0);
  EXPECT_THAT(outcome.savedFiles, IsEmpty());

  // One page fewer fits: the last page is 32766 and says "-" as the next.
  dialogs.messages.clear();
  inputs.sheetNumberText = "32759";
  EXPECT_TRUE(Generate().completed);
  EXPECT_THAT(MessageTexts(), IsEmpty());
  EXPECT_EQ(recording.files().at("/R/Lista.xlsx").Find("32766")->cells.at({2, 6}), "-");
}

// A sheet holds 1023 manual breaks; a dynamic run that needs more to start each placement on a page of
// its own is refused, counting the breaks as the run puts them. (That a refusal stops the run before
// the target is asked for: PagesPastTheCounterAreRefusedBeforeTheTargetIsAskedFor.)
TEST_F(RunLimitsTest, DynamicBreaksPastTheSheetsLimitAreRefused) {
  const auto dynamic = Layout(10, 9999, true);
  for (int i = 1; i <= 1024; ++i) AddPlacement("+A" + std::to_string(i), i, 1);
  EXPECT_EQ(MeasureRun(table, dynamic).pageBreaks, 1023);
  EXPECT_EQ(CounterLimitRefusal(MeasureRun(table, dynamic), dynamic, 1), "");

  AddPlacement("+B1", 1, 1);
  AddTitle("+B2");  // a head without rows breaks at the same row as the next one: no break of its own
  AddPlacement("+B3", 1, 1);
  EXPECT_EQ(MeasureRun(table, dynamic).pageBreaks, 1025);
  EXPECT_EQ(CounterLimitRefusal(MeasureRun(table, dynamic), dynamic, 1),
            "Rapporten behöver 1025 manuella sidbrytningar för att varje placering ska börja på en egen "
            "sida, men ett kalkylblad rymmer högst 1023.\rMallen har dynamisk sidlängd; dela upp rapporten "
            "eller använd en mall med fast sidlängd.");
}

// Everything wrong with the INI file is told in one box, before the user is asked for a target that
// could never be written.
TEST_F(RunLimitsTest, ABrokenIniIsToldInOneBoxBeforeTheTargetIsAskedFor) {
  AddPages(2);
  definition.IniPath = std::string(kFolder) + "\\two_bad_lines.ini";
  const auto outcome = Generate();
  EXPECT_FALSE(outcome.completed);
  EXPECT_THAT(MessageTexts(),
              ElementsAre("Fel: Cellposition för placering är felaktigt angiven i ini-filen.\r\"LOCATION=B\"\r\r"
                          "Startrad för ifyllnad av sida är felaktigt angiven i ini-filen.\r\"STARTROW=x10\"\r\r"
                          "Redigera ini-filen " +
                          base::DisplayPath(definition.IniPath) + " och försök senare."));
  EXPECT_EQ(dialogs.fileAnswers.size(), 1u);  // the target was never asked for
  EXPECT_EQ(recording.applicationsCreated(), 0);
}

// "Filen används" is what the system's "permission denied" has always been told as; the real cause,
// when it is not another program holding the file, follows on a line of its own.
TEST(WriteRefusalCauseTest, NamesAWriteProtectedFileOrAFolderThatTakesNoFiles) {
  testing::TempDir folder;
  const auto file = folder.Write("Lista.xlsx", "förra");
  EXPECT_EQ(WriteRefusalCause(file.string()), "");
  std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::group_read);
  EXPECT_EQ(WriteRefusalCause(file.string()), "Filen " + base::DisplayPath(file.string()) + " är skrivskyddad.");
#ifndef _WIN32
  if (::geteuid() == 0) GTEST_SKIP() << "root writes in every folder";
  std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  const std::string cause = WriteRefusalCause((folder.path() / "Ny.xlsx").string());
  std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
  EXPECT_EQ(cause, "Mappen " + folder.path().string() + " går inte att skriva i (skrivskyddad eller utan skrivrättighet).");
#endif
}

TEST_F(RunLimitsTest, FailedPageSavesNothingAndSaysSoOnce) {
  AddPages(5);
  // The second page cannot be made: whatever follows, the workbook would lack it.
  recording.FailCall("Copy", 2, 68);
  const auto outcome = Generate();
  EXPECT_FALSE(outcome.completed);
  EXPECT_THAT(MessageTexts(), ElementsAre("Sheetwright: Enheten ej läsbar/tillgänglig.",
                                          "Fel: Genereringen avbröts och arbetsboken har inte sparats: "
                                          "/R/Lista.xlsx är som före körningen."));
  EXPECT_THAT(outcome.savedFiles, IsEmpty());
  EXPECT_FALSE(recording.files().contains("/R/Lista.xlsx"));
  EXPECT_EQ(pointers.back(), MousePointer::kDefault);
}

}  // namespace
}  // namespace sw::generate
