#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/process_launcher.h"
#include "base/windows_path.h"

extern char** environ;

namespace sw::base {
namespace {

// Runs `program` with `argument` detached from this process: its output goes nowhere, and it is
// reaped by init, so a long-running editor neither blocks the program nor stays behind as a zombie.
bool StartDetached(const char* program, const std::string& argument) {
  const pid_t child = fork();
  if (child < 0) return false;
  if (child == 0) {
    setsid();
    const int null = open("/dev/null", O_RDWR);
    if (null >= 0) {
      dup2(null, STDIN_FILENO);
      dup2(null, STDOUT_FILENO);
      dup2(null, STDERR_FILENO);
    }
    pid_t grandchild = 0;
    std::vector<char*> argv{const_cast<char*>(program), const_cast<char*>(argument.c_str()), nullptr};
    const int status = posix_spawnp(&grandchild, program, nullptr, nullptr, argv.data(), environ);
    _exit(status == 0 ? 0 : 127);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Runs the blank-separated words of `commandLine` (the first found on PATH) and waits for it.
bool RunAndWait(std::string_view commandLine) {
  std::vector<std::string> words;
  std::size_t start = commandLine.find_first_not_of(' ');
  while (start != std::string_view::npos) {
    const std::size_t end = commandLine.find(' ', start);
    words.emplace_back(commandLine.substr(start, end - start));
    start = commandLine.find_first_not_of(' ', end);
  }
  if (words.empty()) return false;
  std::vector<char*> argv;
  for (auto& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ) != 0) return false;
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class PosixProcessLauncher final : public ProcessLauncher {
 public:
  // There are no windows to minimise for a program started from here.
  bool RunMinimisedAndWait(std::string_view commandLine) override { return RunAndWait(commandLine); }
  bool EditTextFile(std::string_view windowsPath) override { return Open(windowsPath); }
  bool OpenWithDefaultApplication(std::string_view windowsPath) override { return Open(windowsPath); }

 private:
  static bool Open(std::string_view windowsPath) {
    const auto path = ResolveWindowsPath(windowsPath).u8string();
    return StartDetached("xdg-open", std::string(path.begin(), path.end()));
  }
};

}  // namespace

std::unique_ptr<ProcessLauncher> CreateSystemProcessLauncher() {
  return std::make_unique<PosixProcessLauncher>();
}

}  // namespace sw::base
