#pragma once
// The registry where Windows' is not at hand: both hives the program uses, kept in one registration
// file in regedit's export format, so that it can be read, edited and merged like an exported .reg
// file. Every read sees the file's current contents (the file is parsed again only when its identity,
// size or modification time changed); every write locks, re-reads, changes and replaces the file in
// one step, so concurrent writers lose nothing and a crash leaves no torn file.
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cadenv/reg_file.h"
#include "cadenv/registry.h"

namespace sw::base {
class Environment;
}

namespace sw::cadenv {

class PortableRegistry final : public Registry {
 public:
  explicit PortableRegistry(std::filesystem::path file);

  // SHEETWRIGHT_REGISTRY when set, else $XDG_CONFIG_HOME/sheetwright/registry.reg, else
  // ~/.config/sheetwright/registry.reg.
  static std::filesystem::path DefaultPath(const base::Environment& environment);

  const std::filesystem::path& FilePath() const { return file_; }
  // The lock file beside the registry file.
  std::filesystem::path LockPath() const;

  std::optional<RegistryValue> QueryValue(RootKey root, std::string_view keyPath,
                                          std::string_view valueName) override;
  std::optional<std::string> SubkeyAt(RootKey root, std::string_view keyPath, std::size_t index) override;
  std::optional<RegistryValue> ValueAt(RootKey root, std::string_view keyPath, std::size_t index) override;
  bool SetStringValue(RootKey root, std::string_view keyPath, std::string_view valueName,
                      std::string_view text) override;
  bool DeleteValue(RootKey root, std::string_view keyPath, std::string_view valueName) override;

  // Applies another registration file's keys, values and deletions to the store, as "regedit /s FILE"
  // does. All or nothing: a file that does not parse changes nothing and its result says why.
  RegParseResult MergeRegFile(const std::filesystem::path& regFile);

  // How the store file itself read last time (a broken file reads as empty keys).
  RegParseResult LastReadResult() const { return lastRead_; }
  // Reads the store file (when it changed) and tells how it read.
  RegParseResult ReadNow();

  // Called with the copy's path when a file that did not parse was kept aside before the first write
  // replaced it, so that the user can be told where their old settings went.
  void OnBrokenFileKept(std::function<void(const std::filesystem::path&)> notice) {
    brokenFileKept_ = std::move(notice);
  }

  // Called once, with the lock file's path, when another program held the lock past the wait; that
  // write and every later one that finds the lock taken are skipped without waiting again, so a run
  // goes on with its settings unsaved instead of hanging.
  void OnLockTimedOut(std::function<void(const std::filesystem::path&)> notice) {
    lockTimedOut_ = std::move(notice);
  }
  // How long a write waits for another program's lock (tests shorten it).
  void SetLockWait(std::chrono::milliseconds wait) { lockWait_ = wait; }
  static constexpr std::chrono::milliseconds kDefaultLockWait{5000};

 private:
  struct Snapshot {
    RegTree tree;
    bool readable = true;  // false: the file exists but could not be read
    bool broken = false;   // the file has contents that did not parse
  };
  // What tells one version of the file from another without reading it.
  struct FileStamp {
    std::uintmax_t device = 0, inode = 0, size = 0;
    std::int64_t modifiedNanoseconds = 0;
    bool operator==(const FileStamp&) const = default;
  };
  static std::optional<FileStamp> StampOf(const std::filesystem::path& file);
  const Snapshot& Load();
  // Locks, re-reads, lets `change` edit the tree and writes it back when `change` says it changed.
  template <typename Change>
  bool Update(Change change);
  std::optional<std::filesystem::path> BackUpBrokenFile() const;

  std::filesystem::path file_;
  RegParseResult lastRead_;
  Snapshot cached_;
  std::optional<FileStamp> cachedStamp_;  // nothing: `cached_` does not stand for the file
  std::function<void(const std::filesystem::path&)> brokenFileKept_;
  std::function<void(const std::filesystem::path&)> lockTimedOut_;
  std::chrono::milliseconds lockWait_ = kDefaultLockWait;
  bool lockGivenUp_ = false;
};

}  // namespace sw::cadenv
