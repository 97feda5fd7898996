// A generation killed part-way, as a power cut or a task manager would end it: the built command in a
// child process, SIGKILL once it has started writing. The template and the earlier result stay byte
// for byte; what it leaves carries the program's own name and its process id, and the next run in that
// folder removes it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "base/file_io.h"
#include "base/own_temp_files.h"
#include "cli_runner.h"
#include "temp_dir.h"

extern char** environ;

namespace sw::testing {
namespace {

namespace fs = std::filesystem;

enum class Mode { kNormal, kSingleSheet };

// A dump of `placements` placements with three rows each, in the CAD system's Windows-1252 text.
std::string BigDump(int placements) {
  std::string text = "VOLTARIS Rapport\tYttre f\xF6rbindningstabell\tFBLTAY\r\nProjekt: Prov\r\n\r\n";
  for (int p = 1; p <= placements; ++p) {
    text += "%+A" + std::to_string(p) + " Sk\xE5p%\r\n";
    for (int r = 1; r <= 3; ++r)
      text += "\tX1\t" + std::to_string(r) + "\tW" + std::to_string(r) + "\tL1\r\n";
  }
  return text;
}

std::vector<std::string> OwnTempFilesOf(const fs::path& folder, unsigned long long process) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (base::OwnTempFileProcess(name) == process) names.push_back(name);
  }
  return names;
}

class KilledRunTest : public ::testing::TestWithParam<Mode> {
 protected:
  void SetUp() override {
    templates_ = folder_.path() / "Mallar";
    results_ = folder_.path() / "Ut";
    fs::create_directories(templates_);
    fs::create_directories(results_);
    fs::copy_file(DataFile("templates/title_block.xlsx"), templates_ / "Lista.xlsx");
    fs::copy_file(DataFile("generation/three_rows.ini"), templates_ / "Lista.ini");
    folder_.Write("dump.txt", BigDump(GetParam() == Mode::kSingleSheet ? 60 : 400));
    folder_.Write("Ut/Lista.xlsx", "det förra resultatet");
    folder_.Write("Ut/Lista-5.xlsx", "en förra sidfil");
  }

  std::vector<std::string> Arguments(const std::string& target) const {
    std::vector<std::string> arguments = {SW_CLI_PATH,  "generate",
                                          "--dump",     (folder_.path() / "dump.txt").string(),
                                          "--template", (templates_ / "Lista.xlsx").string(),
                                          "--out",      (results_ / target).string()};
    if (GetParam() == Mode::kSingleSheet) {
      arguments.push_back("--single-sheet");
      arguments.push_back("--yes");
    }
    return arguments;
  }

  // Starts the command and kills it once it has written what `started` looks for.
  int RunAndKill() {
    std::vector<std::string> environment = CliRunner(folder_.path()).Variables();
    for (char** variable = environ; *variable; ++variable) {
      const std::string text = *variable;
      if (!text.starts_with("SHEETWRIGHT_")) environment.push_back(text);
    }
    const auto arguments = Arguments("Lista.xlsx");
    std::vector<char*> argv;
    for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (const auto& variable : environment) envp.push_back(const_cast<char*>(variable.c_str()));
    envp.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    EXPECT_EQ(posix_spawn(&child, SW_CLI_PATH, &actions, nullptr, argv.data(), envp.data()), 0);
    posix_spawn_file_actions_destroy(&actions);

    // Part-way: single-sheet runs once a page file is finished, the others once the working copy is
    // there. The run goes on far longer than the wait (hundreds of pages).
    const auto started = [&] {
      if (GetParam() == Mode::kSingleSheet) return fs::exists(results_ / "Lista-2.xlsx");
      return !OwnTempFilesOf(results_, static_cast<unsigned long long>(child)).empty();
    };
    int status = 0;
    while (!started()) {
      if (waitpid(child, &status, WNOHANG) == child) {
        ADD_FAILURE() << "the command ended before it was killed";
        return child;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the command finished before the kill";
    return child;
  }

  TempDir folder_;
  fs::path templates_;
  fs::path results_;
};

TEST_P(KilledRunTest, LeavesTheOldFilesAndOnlyItsOwnTemporaryFileWhichTheNextRunRemoves) {
  const std::string templateBefore = *base::ReadWholeFile(templates_ / "Lista.xlsx");
  const auto child = static_cast<unsigned long long>(RunAndKill());

  EXPECT_EQ(*base::ReadWholeFile(templates_ / "Lista.xlsx"), templateBefore);
  EXPECT_EQ(*base::ReadWholeFile(results_ / "Lista.xlsx"), "det förra resultatet");
  // A page file is either the old one or a finished page: it only ever gets its name by a rename.
  const std::string page5 = *base::ReadWholeFile(results_ / "Lista-5.xlsx");
  EXPECT_TRUE(page5 == "en förra sidfil" || page5.starts_with("PK"));
  const auto left = OwnTempFilesOf(results_, child);
  ASSERT_FALSE(left.empty());
  // The working copy, and in single-sheet runs a page file the kill caught before its rename.
  for (const auto& name : left) EXPECT_TRUE(name.starts_with("Lista")) << name;

  // The next run in that folder, a small one to another target, removes what the killed one left. What
  // it keeps (a running process's files, the user's own) is the saving's own matter.
  CliRunner cli(folder_.path());
  const auto next =
      cli.Run({"generate", "--dump",
               (fs::path(SW_SOURCE_DIR) / "tests/data/generation/seven_rows_one_placement.txt").string(),
               "--template", (templates_ / "Lista.xlsx").string(), "--out", (results_ / "Ny.xlsx").string()});
  EXPECT_EQ(next.exitCode, 0) << next.err;
  EXPECT_TRUE(OwnTempFilesOf(results_, child).empty());
  EXPECT_EQ(*base::ReadWholeFile(results_ / "Lista.xlsx"), "det förra resultatet");
  EXPECT_EQ(*base::ReadWholeFile(templates_ / "Lista.xlsx"), templateBefore);
}

INSTANTIATE_TEST_SUITE_P(Modes, KilledRunTest,
                         ::testing::Values(Mode::kNormal, Mode::kSingleSheet), [](const auto& test) {
                           return std::string(test.param == Mode::kNormal ? "Normal" : "SingleSheet");
                         });

}  // namespace
}  // namespace sw::testing
