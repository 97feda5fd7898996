// What a run leaves on disk when it cannot finish: the template and any earlier result byte for byte
// as they were, no temporary file, and a failure the user is told of. The package engine works on real
// files in a fresh folder; its writes fail on cue through the file-writer seam.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "base/own_temp_files.h"
#include "base/windows_path.h"
#include "excel/package/package_engine.h"
#include "generation_fixture.h"
#include "temp_dir.h"

namespace sw::generate {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

enum class Mode { kNormal, kSingleSheet, kDynamic };

const char* ModeName(Mode mode) {
  return std::array{"Normal", "SingleSheet", "Dynamic"}[static_cast<std::size_t>(mode)];
}

constexpr const char* kOldResult = "det förra resultatet, som ingen körning får förstöra";

// The files of a folder with their bytes.
std::map<std::string, std::string> Snapshot(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    files[entry.path().filename().string()] = *base::ReadWholeFile(entry.path());
  }
  return files;
}

bool HasOwnTempFile(const fs::path& folder) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (base::OwnTempFileProcess(entry.path().filename().string()) != 0) return true;
  }
  return false;
}

class SafeSaveRun : public GenerationFixture {
 public:
  explicit SafeSaveRun(Mode mode) {
    templates = folder.path() / "Mallar";
    results = folder.path() / "Ut";
    fs::create_directories(templates);
    fs::create_directories(results);
    fs::copy_file(testing::DataFile("templates/title_block.xlsx"), templates / "Lista.xlsx");
    const char* ini = mode == Mode::kDynamic ? "generation/dynamic.ini" : "generation/three_rows.ini";
    fs::copy_file(testing::DataFile(ini), templates / "Lista.ini");
    // An earlier result and, for single-sheet runs, earlier page files.
    for (const char* name : {"Lista.xlsx", "Lista-1.xlsx", "Lista-2.xlsx", "Lista-3.xlsx"}) {
      folder.Write(std::string("Ut/") + name, std::string(kOldResult) + name);
    }
    inputs.templateFolder = templates.string();
    inputs.templateFile = "Lista.xlsx";
    inputs.singleSheet = mode == Mode::kSingleSheet;
    dialogs.fileAnswers = {(results / "Lista.xlsx").string()};
    UseTemplateIni();
    AddPlacement("+A1", 1, 7);  // three pages of three rows
    services.createExcel = [this] {
      return std::make_unique<excel::Application>(std::make_unique<excel::PackageEngine>(
          [this](const fs::path& path, std::string_view bytes) { return Write(path, bytes); }));
    };
  }

  void UseTemplateIni() {
    definition = {};
    inputs.fieldTexts = PairTemplateIni((templates / "Lista.ini").string(), definition, table);
  }

  std::error_code Write(const fs::path& path, std::string_view bytes) {
    ++writes;
    if (writes == failingWrite || (diskStaysFull && failingWrite != 0 && writes > failingWrite))
      return std::make_error_code(std::errc::no_space_on_device);
    return base::WriteFileAtomically(path, bytes);
  }

  testing::TempDir folder;
  fs::path templates;
  fs::path results;
  int writes = 0;
  int failingWrite = 0;        // 0: none fails
  bool diskStaysFull = false;  // every write after the failing one fails too
};

// How many files a clean run of `mode` writes.
int WritesOfACleanRun(Mode mode) {
  SafeSaveRun run(mode);
  EXPECT_TRUE(run.Generate().completed) << ::testing::PrintToString(run.MessageTexts());
  return run.writes;
}

enum class Trouble {
  kTargetIsTheTemplate,
  kTargetIsTheDump,
  kCorruptTemplate,
  kMissingSheet,
  kFirstWrite,
  kMiddleWrite,
  kLastWrite
};

const char* TroubleName(Trouble trouble) {
  return std::array{
      "TargetIsTheTemplate", "TargetIsTheDump",  "CorruptTemplate", "MissingSheet",
      "FirstWriteFails",     "MiddleWriteFails", "LastWriteFails"}[static_cast<std::size_t>(trouble)];
}

class FailedRunTest : public ::testing::TestWithParam<std::tuple<Mode, Trouble>> {};

TEST_P(FailedRunTest, LeavesTemplateAndEarlierResultsAsTheyWereAndSaysSo) {
  const auto [mode, trouble] = GetParam();
  const int cleanWrites = trouble >= Trouble::kFirstWrite ? WritesOfACleanRun(mode) : 0;
  SafeSaveRun run(mode);
  switch (trouble) {
    case Trouble::kTargetIsTheTemplate:
      // Another spelling of the template's name, which the program's name lookup leads to the template.
      run.dialogs.fileAnswers = {(run.templates / "lista.XLSX").string()};
      break;
    case Trouble::kTargetIsTheDump:
      // The dump saved under a workbook's name, reached through another spelling of its folder.
      run.inputs.dumpPickerText = run.folder.Write("Ut/Rapport.xlsx", "VOLTARIS Rapport").string();
      run.dialogs.fileAnswers = {(run.results / "." / "Rapport.xlsx").string()};
      break;
    case Trouble::kCorruptTemplate: {
      std::string bytes = *base::ReadWholeFile(run.templates / "Lista.xlsx");
      bytes.resize(bytes.size() / 3);
      run.folder.Write("Mallar/Lista.xlsx", bytes);
      break;
    }
    case Trouble::kMissingSheet:
      run.definition.TemplateSheetName = "Saknas";
      run.folder.Write(
          "Mallar/Lista.ini",
          "[Tabs]\nTemplate=Saknas\nCommon=Common\n[Sheet]\nSHEETNO=F1\nNEXTSHEET=F2\nLOCATION=B2\n"
          "STARTROW=10\nENDROW=12\nCOLUMNS=A,B,!,D\n" +
              std::string(mode == Mode::kDynamic ? "INFINITE=1\n" : ""));
      break;
    case Trouble::kFirstWrite:
      run.failingWrite = 1;
      break;
    case Trouble::kMiddleWrite:
      run.failingWrite = (cleanWrites + 1) / 2;
      break;
    case Trouble::kLastWrite:
      run.failingWrite = cleanWrites;
      break;
  }
  const auto templatesBefore = Snapshot(run.templates);
  const auto resultsBefore = Snapshot(run.results);

  const auto outcome = run.Generate();

  EXPECT_FALSE(outcome.completed);
  ASSERT_FALSE(run.dialogs.messages.empty());
  EXPECT_THAT(run.dialogs.messages.back().title, ::testing::AnyOf("Fel", "Filfel", ""));
  EXPECT_EQ(Snapshot(run.templates), templatesBefore);
  EXPECT_TRUE(outcome.templateBackup.empty());
  EXPECT_FALSE(HasOwnTempFile(run.results));
  // Every earlier file is as it was, unless the run reports it written anew (a page file it finished).
  const auto resultsAfter = Snapshot(run.results);
  for (const auto& [name, bytes] : resultsBefore) {
    const std::string path = (run.results / name).string();
    const bool rewritten =
        std::find(outcome.savedFiles.begin(), outcome.savedFiles.end(), path) != outcome.savedFiles.end();
    ASSERT_TRUE(resultsAfter.contains(name)) << name;
    if (rewritten) {
      EXPECT_TRUE(resultsAfter.at(name).starts_with("PK")) << name;
    } else {
      EXPECT_EQ(resultsAfter.at(name), bytes) << name;
    }
  }
  EXPECT_EQ(resultsAfter.size(), resultsBefore.size());
  if (trouble == Trouble::kTargetIsTheTemplate) {
    EXPECT_EQ(run.MessageTexts().back(),
              "Fel: Filen " + (run.templates / "lista.XLSX").string() +
                  " är själva mallen och kan inte skrivas över.\rAnge annat filnamn.");
    EXPECT_FALSE(run.state.excelApp);
  }
  if (trouble == Trouble::kTargetIsTheDump) {
    EXPECT_EQ(run.MessageTexts().back(), "Fel: Filen " + (run.results / "." / "Rapport.xlsx").string() +
                                             " är själva rapportfilen och kan inte skrivas över.\rAnge annat "
                                             "filnamn.");
  }
  if (trouble == Trouble::kCorruptTemplate) {
    // Told as the file error it is, naming the file, before the user is asked where the result goes.
    EXPECT_EQ(run.MessageTexts().back(),
              "Filfel: Filen är inte en giltig arbetsbok (zip-arkivet är skadat: det är inget zip-arkiv).\r" +
                  base::DisplayPath(run.inputs.templateFolder + "\\Lista.xlsx"));
    EXPECT_TRUE(run.dialogs.fileRequests.empty());
  }
  if (trouble >= Trouble::kFirstWrite) {
    EXPECT_THAT(run.MessageTexts().back(), HasSubstr("disken är full")) << run.MessageTexts().back();
    // Named as the user knows it, not by the temporary name it is first written under.
    EXPECT_THAT(run.MessageTexts().back(), ::testing::Not(HasSubstr(".sheetwright-")));
  }
}

INSTANTIATE_TEST_SUITE_P(
    ModesAndTroubles, FailedRunTest,
    ::testing::Combine(::testing::Values(Mode::kNormal, Mode::kSingleSheet, Mode::kDynamic),
                       ::testing::Values(Trouble::kTargetIsTheTemplate, Trouble::kTargetIsTheDump,
                                         Trouble::kCorruptTemplate, Trouble::kMissingSheet,
                                         Trouble::kFirstWrite, Trouble::kMiddleWrite, Trouble::kLastWrite)),
    [](const auto& test) {
      return std::string(ModeName(std::get<0>(test.param))) + "_" + TroubleName(std::get<1>(test.param));
    });

// A full disk fails every page file after the first that failed: the run ends there with one message
// naming the file, instead of one for every page left.
TEST(SafeSaveTest, FullDiskEndsASingleSheetRunWithOneMessage) {
  SafeSaveRun run(Mode::kSingleSheet);
  run.AddPlacement("+A2", 8, 30);  // ten more pages
  run.failingWrite = 4;  // page 1's working copy and file, page 2's working copy, then page 2's file
  run.diskStaysFull = true;
  const auto outcome = run.Generate();
  EXPECT_FALSE(outcome.completed);
  ASSERT_EQ(run.MessageTexts().size(), 1u) << ::testing::PrintToString(run.MessageTexts());
  EXPECT_THAT(run.MessageTexts()[0], HasSubstr("disken är full"));
  EXPECT_THAT(run.MessageTexts()[0], HasSubstr("Lista-2.xlsx"));
  EXPECT_THAT(outcome.savedFiles, ::testing::ElementsAre((run.results / "Lista-1.xlsx").string()));
  EXPECT_FALSE(HasOwnTempFile(run.results));
  EXPECT_EQ(*base::ReadWholeFile(run.results / "Lista-3.xlsx"), std::string(kOldResult) + "Lista-3.xlsx");
}

TEST(SafeSaveTest, CleanRunsReplaceTheEarlierResultAndLeaveNoTemporaryFile) {
  for (const Mode mode : {Mode::kNormal, Mode::kSingleSheet, Mode::kDynamic}) {
    SafeSaveRun run(mode);
    const auto templatesBefore = Snapshot(run.templates);
    // What a killed run of another process left: removed. What looks alike but is not ours: kept.
    run.folder.Write("Ut/Lista.xlsx.sheetwright-2147483646.tmp", "kvar efter en avbruten körning");
    run.folder.Write("Ut/Lista.xlsx.sheetwright-" + std::to_string(base::CurrentProcessId()) + "-9.tmp",
                     "pågår");
    run.folder.Write("Ut/anteckningar.sheetwright-1.txt", "användarens fil");
    const auto outcome = run.Generate();
    EXPECT_TRUE(outcome.completed) << ModeName(mode);
    EXPECT_EQ(Snapshot(run.templates), templatesBefore);
    const auto after = Snapshot(run.results);
    EXPECT_FALSE(after.contains("Lista.xlsx.sheetwright-2147483646.tmp"));
    EXPECT_TRUE(after.contains("anteckningar.sheetwright-1.txt"));
    fs::remove(run.results /
               ("Lista.xlsx.sheetwright-" + std::to_string(base::CurrentProcessId()) + "-9.tmp"));
    EXPECT_FALSE(HasOwnTempFile(run.results)) << ModeName(mode);
    const std::vector<std::string> written =
        mode == Mode::kSingleSheet ? std::vector<std::string>{"Lista-1.xlsx", "Lista-2.xlsx", "Lista-3.xlsx"}
                                   : std::vector<std::string>{"Lista.xlsx"};
    for (const auto& name : written) EXPECT_TRUE(after.at(name).starts_with("PK")) << name;
    if (mode == Mode::kSingleSheet) {
      EXPECT_EQ(after.at("Lista.xlsx"), std::string(kOldResult) + "Lista.xlsx");
    }
  }
}

TEST(SafeSaveTest, RunsThatWriteIntoTheTemplateKeepItsContentBesideItFirst) {
  // The window's single-sheet mode with a dynamic-length template saves the template itself.
  {
    SafeSaveRun run(Mode::kDynamic);
    run.inputs.singleSheet = true;
    const std::string before = *base::ReadWholeFile(run.templates / "Lista.xlsx");
    const auto outcome = run.Generate();
    EXPECT_TRUE(outcome.completed) << ::testing::PrintToString(run.MessageTexts());
    EXPECT_THAT(outcome.savedFiles, ::testing::ElementsAre(run.inputs.templateFolder + "\\Lista.xlsx"));
    ASSERT_THAT(outcome.templateBackup, HasSubstr("Lista (kopia före körning "));
    EXPECT_EQ(*base::ReadWholeFile(base::ResolveWindowsPath(outcome.templateBackup)), before);
    EXPECT_NE(*base::ReadWholeFile(run.templates / "Lista.xlsx"), before);
  }
  // A second single-sheet run of the same window saves the freshly opened template first.
  {
    SafeSaveRun run(Mode::kSingleSheet);
    const std::string before = *base::ReadWholeFile(run.templates / "Lista.xlsx");
    EXPECT_TRUE(run.Generate().completed);
    EXPECT_EQ(*base::ReadWholeFile(run.templates / "Lista.xlsx"), before);
    run.dialogs.fileAnswers = {(run.results / "Lista.xlsx").string()};
    const auto second = run.Generate();
    EXPECT_TRUE(second.completed) << ::testing::PrintToString(run.MessageTexts());
    ASSERT_FALSE(second.templateBackup.empty());
    EXPECT_EQ(*base::ReadWholeFile(base::ResolveWindowsPath(second.templateBackup)), before);
  }
}

// The user stops a run from the window as its pages are begun: nothing more is written, the earlier
// result stays byte for byte, no temporary file is left, and the user is told once what stays.
TEST(SafeSaveTest, RunStoppedByTheUserLeavesTheEarlierResultAndSaysWhatStays) {
  for (const Mode mode : {Mode::kNormal, Mode::kSingleSheet}) {
    SafeSaveRun run(mode);
    bool stop = false;
    std::vector<GenerationPhase> phases;
    run.services.pageStarted = [&](int pages) { stop = pages == 3; };
    run.services.cancelRequested = [&] { return stop; };
    run.services.phaseChanged = [&](GenerationPhase phase) { phases.push_back(phase); };
    const auto templatesBefore = Snapshot(run.templates);
    const auto resultsBefore = Snapshot(run.results);

    const auto outcome = run.Generate();

    EXPECT_TRUE(outcome.cancelled) << ModeName(mode);
    EXPECT_FALSE(outcome.completed);
    EXPECT_THAT(phases, ::testing::ElementsAre(GenerationPhase::kMakingPages));
    EXPECT_EQ(Snapshot(run.templates), templatesBefore);
    EXPECT_FALSE(HasOwnTempFile(run.results));
    ASSERT_EQ(run.dialogs.messages.size(), 1u) << ::testing::PrintToString(run.MessageTexts());
    EXPECT_EQ(run.dialogs.messages[0].icon, base::MessageIcon::kInformation);
    auto expected = resultsBefore;
    if (mode == Mode::kNormal) {
      EXPECT_TRUE(outcome.savedFiles.empty());
      EXPECT_EQ(run.dialogs.messages[0].text,
                "Genereringen avbröts. " + (run.results / "Lista.xlsx").string() + " är som före körningen.");
    } else {
      // Page 1 was finished and saved when page 2 began; page 2 was not yet saved when page 3 began.
      EXPECT_THAT(outcome.savedFiles, ::testing::ElementsAre((run.results / "Lista-1.xlsx").string()));
      EXPECT_EQ(run.dialogs.messages[0].text,
                "Genereringen avbröts. 1 färdig sida har sparats i en egen fil och finns kvar.");
      const auto after = Snapshot(run.results);
      EXPECT_TRUE(after.at("Lista-1.xlsx").starts_with("PK"));
      expected["Lista-1.xlsx"] = after.at("Lista-1.xlsx");
    }
    EXPECT_EQ(Snapshot(run.results), expected) << ModeName(mode);
  }
}

// A stop asked for after the last page, and on one long dynamic-length page between its rows.
TEST(SafeSaveTest, StopIsAskedForBetweenRowsAndBeforeTheSave) {
  {
    SafeSaveRun run(Mode::kDynamic);
    run.AddPlacement("+A2", 8, 1200);
    int asked = 0;
    run.services.cancelRequested = [&] { return ++asked == 3; };
    const auto resultsBefore = Snapshot(run.results);
    const auto outcome = run.Generate();
    EXPECT_TRUE(outcome.cancelled);
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(Snapshot(run.results), resultsBefore);
    EXPECT_FALSE(HasOwnTempFile(run.results));
  }
  {
    // Nobody asks for a stop: the run saves, and says that it does.
    SafeSaveRun run(Mode::kNormal);
    int asked = 0;
    std::vector<GenerationPhase> phases;
    run.services.cancelRequested = [&] { return ++asked < 0; };
    run.services.phaseChanged = [&](GenerationPhase phase) { phases.push_back(phase); };
    const auto outcome = run.Generate();
    EXPECT_TRUE(outcome.completed);
    EXPECT_FALSE(outcome.cancelled);
    EXPECT_GE(asked, 4);  // at each of the three pages and before the save
    EXPECT_THAT(phases, ::testing::ElementsAre(GenerationPhase::kMakingPages, GenerationPhase::kSaving));
  }
}

}  // namespace
}  // namespace sw::generate
