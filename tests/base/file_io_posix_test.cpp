#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "base/file_io.h"
#include "base/own_temp_files.h"
#include "temp_dir.h"

namespace sw::base {
namespace {

using sw::testing::TempDir;

TEST(PosixOnlyReadWholeFile, ReadsOnlyRegularFilesAndNeverWaitsOnAPipe) {
  TempDir dir;
  const auto file = dir.Write("fil.txt", std::string("a\0b", 3));
  const auto folder = dir.path() / "mapp";
  std::filesystem::create_directory(folder);
  const auto pipe = dir.path() / "ror";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const auto link = dir.path() / "lank";
  std::filesystem::create_symlink(file, link);

  struct Case {
    std::filesystem::path path;
    std::optional<std::string> bytes;
    std::errc error;
  };
  const Case cases[] = {
      {file, std::string("a\0b", 3), std::errc()},
      {link, std::string("a\0b", 3), std::errc()},  // a link to a file is that file
      {folder, std::nullopt, std::errc::is_a_directory},
      {pipe, std::nullopt, std::errc::invalid_argument},  // a writer never comes; no wait for one
      {dir.path() / "saknas", std::nullopt, std::errc::no_such_file_or_directory},
  };
  for (const auto& c : cases) {
    std::error_code error;
    EXPECT_EQ(ReadWholeFile(c.path, &error), c.bytes) << c.path;
    if (c.bytes) continue;
    EXPECT_EQ(error, c.error) << c.path;
    EXPECT_EQ(IsNotARegularFile(error), c.error != std::errc::no_such_file_or_directory) << c.path;
  }
}

TEST(PosixOnlyReadWholeFile, EmptyAndLargeFilesReadWhole) {
  TempDir dir;
  EXPECT_EQ(ReadWholeFile(dir.Write("tom.txt", "")), std::string());
  const std::string large(3 * 65536 + 17, 'x');
  EXPECT_EQ(ReadWholeFile(dir.Write("stor.txt", large)), large);
}

// A file that will be kept takes its name only when whole (a new file each time); one of the
// program's own temporary files is never kept and is written in place. Neither leaves anything else.
TEST(PosixOnlyWriteFileAtomically, KeptFilesGetANewFileOwnTemporaryFilesAreWrittenInPlace) {
  const TempDir dir;
  const auto inode = [](const std::filesystem::path& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0);
    return info.st_ino;
  };
  const auto kept = dir.path() / "Lista-1.xlsx";
  ASSERT_FALSE(WriteFileAtomically(kept, "first"));
  const auto keptBefore = inode(kept);
  ASSERT_FALSE(WriteFileAtomically(kept, "second"));
  EXPECT_NE(inode(kept), keptBefore);
  EXPECT_EQ(ReadWholeFile(kept), "second");

  const auto working = dir.path() / ("Lista.xlsx" + OwnTempSuffix());
  ASSERT_FALSE(WriteFileAtomically(working, "a longer first text"));
  const auto workingBefore = inode(working);
  ASSERT_FALSE(WriteFileAtomically(working, "short"));
  EXPECT_EQ(inode(working), workingBefore);
  EXPECT_EQ(ReadWholeFile(working), "short");

  // A name in that form that no process of ours made (a user's file, say) is kept as any other file.
  const auto foreign = dir.path() / "Lista.xlsx.sheetwright-1.tmp";
  ASSERT_FALSE(WriteFileAtomically(foreign, "first"));
  const auto foreignBefore = inode(foreign);
  ASSERT_FALSE(WriteFileAtomically(foreign, "second"));
  EXPECT_NE(inode(foreign), foreignBefore);
  EXPECT_EQ(ReadWholeFile(foreign), "second");

  int files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path())) ++files;
  EXPECT_EQ(files, 3);
}

// Only names the program made are its temporary files; a later run removes those left behind.
TEST(OwnTempFileNames, GiveTheProcessOnlyForTheProgramsOwnForm) {
  EXPECT_EQ(OwnTempFileProcess("Lista.xlsx.sheetwright-4711.tmp"), 4711u);
  EXPECT_EQ(OwnTempFileProcess("Lista.xlsx.sheetwright-4711-12.tmp"), 4711u);
  EXPECT_EQ(OwnTempFileProcess("a.sheetwright-1.tmp.sheetwright-9999999999999999999.tmp"), 9999999999999999999u);
  for (const char* name : {"Lista.xlsx", ".sheetwright-4711.tmp", "Lista.sheetwright-.tmp",
                           "Lista.sheetwright-47a1.tmp", "Lista.sheetwright-1-.tmp", "Lista.sheetwright-1-2-3.tmp",
                           "Lista.sheetwright-4711.tmp.bak", "Lista.sheetwright-12345678901234567890.tmp"}) {
    EXPECT_EQ(OwnTempFileProcess(name), 0u) << name;
  }
}

}  // namespace
}  // namespace sw::base
