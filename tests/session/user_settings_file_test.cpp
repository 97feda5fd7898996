#include "session/user_settings_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "cadenv/file_lock.h"
#include "cadenv/portable_registry.h"
#include "temp_dir.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace sw::session {
namespace {

using cadenv::RootKey;
using namespace std::chrono_literals;

struct Opened {
  UserSettingsFile file;
  std::vector<base::Notice> later;
};

std::unique_ptr<Opened> Open(const std::filesystem::path& path, std::chrono::milliseconds wait = 200ms) {
  auto opened = std::make_unique<Opened>();
  opened->file = OpenSettingsFileAt(std::make_unique<cadenv::PortableRegistry>(path),
                                    [raw = opened.get()](base::Notice n) { raw->later.push_back(std::move(n)); },
                                    wait);
  return opened;
}

bool Write(Opened& opened, const char* value) {
  return opened.file.registry->SetStringValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright", "Top", value);
}

TEST(UserSettingsFile, ALockAnotherProgramKeepsIsWaitedForABoundedTimeAndToldOnce) {
  testing::TempDir dir;
  auto opened = Open(dir.path() / "registry.reg");
  ASSERT_TRUE(opened->file.outcome);
  const cadenv::ExclusiveFileLock other(dir.path() / "registry.reg.lock", 0ms);
  ASSERT_TRUE(other.Held());

  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Write(*opened, "1"));
  EXPECT_FALSE(Write(*opened, "2"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);  // the second write does not wait again
  ASSERT_EQ(opened->later.size(), 1u);
  const std::string& text = opened->later[0].text;
  EXPECT_EQ(text.rfind("Inställningsfilen ", 0), 0u);
  EXPECT_NE(text.find("registry.reg.lock"), std::string::npos);
  EXPECT_NE(text.find("är låst av ett annat program"), std::string::npos);
  EXPECT_EQ(opened->later[0].title, "Filfel");
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "registry.reg"));
}

TEST(UserSettingsFile, AWriteAfterTheLockIsFreedIsKept) {
  testing::TempDir dir;
  auto opened = Open(dir.path() / "registry.reg", 50ms);
  {
    const cadenv::ExclusiveFileLock other(dir.path() / "registry.reg.lock", 0ms);
    EXPECT_FALSE(Write(*opened, "1"));
  }
  EXPECT_TRUE(Write(*opened, "2"));
  EXPECT_TRUE(std::filesystem::exists(dir.path() / "registry.reg"));
}

TEST(UserSettingsFile, AFolderWhereTheFileBelongsIsToldAndReadsEmpty) {
  testing::TempDir dir;
  std::filesystem::create_directory(dir.path() / "registry.reg");
  auto opened = Open(dir.path() / "registry.reg");
  EXPECT_FALSE(opened->file.outcome);
  ASSERT_EQ(opened->file.outcome.notices.size(), 1u);
  EXPECT_NE(opened->file.outcome.notices[0].text.find("eftersom det inte är någon vanlig fil."), std::string::npos);
  EXPECT_FALSE(opened->file.registry->QueryValue(RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright", "Top"));
  EXPECT_FALSE(Write(*opened, "1"));
}

#ifndef _WIN32
TEST(PosixOnlyUserSettingsFile, APipeOrADeviceIsToldAtOnceWithoutReadingIt) {
  testing::TempDir dir;
  const auto fifo = dir.path() / "registry.reg";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  for (const std::filesystem::path& path : {fifo, std::filesystem::path("/dev/zero")}) {
    auto opened = Open(path);
    EXPECT_FALSE(opened->file.outcome) << path;
    ASSERT_EQ(opened->file.outcome.notices.size(), 1u);
    EXPECT_EQ(opened->file.outcome.notices[0].text,
              "Kan ej läsa inställningsfilen " + path.string() + " eftersom det inte är någon vanlig fil.");
  }
}
#endif

}  // namespace
}  // namespace sw::session
