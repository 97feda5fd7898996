#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/file_io.h"
#include "cadenv/portable_registry.h"
#include "temp_dir.h"

namespace sw::cadenv {
namespace {

constexpr int kValuesPerWriter = 200;

// Runs in a forked child: waits for the start signal, then writes its values one by one.
[[noreturn]] void WriteValues(const std::filesystem::path& file, int writer, int startPipe) {
  char go = 0;
  const bool started = ::read(startPipe, &go, 1) == 1;
  PortableRegistry registry(file);
  bool ok = started;
  for (int i = 0; ok && i < kValuesPerWriter; ++i) {
    ok = registry.SetStringValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright",
                                 "W" + std::to_string(writer) + "_" + std::to_string(i), std::to_string(i));
  }
  ::_exit(ok ? 0 : 1);
}

TEST(PortableRegistryConcurrency, TwoProcessesWritingAtOnceLoseNoUpdate) {
  sw::testing::TempDir dir;
  const auto file = dir.path() / "registry.reg";
  int startPipe[2];
  ASSERT_EQ(::pipe(startPipe), 0);
  std::vector<pid_t> children;
  for (int writer = 0; writer < 2; ++writer) {
    const pid_t pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      ::close(startPipe[1]);
      WriteValues(file, writer, startPipe[0]);
    }
    children.push_back(pid);
  }
  ::close(startPipe[0]);
  ASSERT_EQ(::write(startPipe[1], "gg", 2), 2);
  ::close(startPipe[1]);
  for (const pid_t pid : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }

  const auto bytes = base::ReadWholeFile(file);
  ASSERT_TRUE(bytes);
  RegTree tree;
  ASSERT_TRUE(ParseRegFile(*bytes, tree));
  const RegKey* key = tree.FindKey(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright");
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(key->Values().size(), 2u * kValuesPerWriter);
  for (int writer = 0; writer < 2; ++writer) {
    for (int i = 0; i < kValuesPerWriter; ++i) {
      const auto* value = key->FindValue("W" + std::to_string(writer) + "_" + std::to_string(i));
      ASSERT_NE(value, nullptr) << writer << "/" << i;
      EXPECT_EQ(value->data, std::to_string(i));
    }
  }
}

}  // namespace
}  // namespace sw::cadenv
