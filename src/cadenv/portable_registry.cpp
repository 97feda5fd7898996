#include "cadenv/portable_registry.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>

#include "base/environment.h"
#include "base/file_io.h"
#include "base/program_folder.h"
#include "base/utf8_path.h"
#include "cadenv/enumeration_buffer.h"
#include "cadenv/file_lock.h"

namespace sw::cadenv {
namespace {

// A name the registration file could not hold: its lines cannot carry a line break.
bool HasLineBreak(std::string_view name) {
  return name.find_first_of("\r\n") != std::string_view::npos;
}

std::string Timestamp() {
  const std::time_t now = std::time(nullptr);
  char text[32] = "";
  if (const std::tm* local = std::localtime(&now)) std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", local);
  return text;
}

}  // namespace

PortableRegistry::PortableRegistry(std::filesystem::path file) : file_(std::move(file)) {}

std::filesystem::path PortableRegistry::DefaultPath(const base::Environment& environment) {
  if (auto explicitPath = environment.Get("SHEETWRIGHT_REGISTRY"); explicitPath && !explicitPath->empty()) {
    return base::PathFromUtf8(*explicitPath);
  }
  const std::filesystem::path relative = std::filesystem::path("sheetwright") / "registry.reg";
  if (auto config = environment.Get("XDG_CONFIG_HOME"); config && !config->empty()) {
    const auto folder = base::PathFromUtf8(*config);
    if (folder.is_absolute()) return folder / relative;
  }
  if (auto home = environment.Get("HOME"); home && !home->empty()) {
    return base::PathFromUtf8(*home) / ".config" / relative;
  }
  return base::ProgramFolder() / "registry.reg";
}

std::filesystem::path PortableRegistry::LockPath() const {
  auto lock = file_;
  lock += ".lock";
  return lock;
}

std::optional<PortableRegistry::FileStamp> PortableRegistry::StampOf(const std::filesystem::path& file) {
  FileStamp stamp;
#ifndef _WIN32
  struct stat info {};
  if (::stat(file.c_str(), &info) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return stamp;  // no file yet: an empty registry
    return std::nullopt;
  }
  stamp.device = static_cast<std::uintmax_t>(info.st_dev);
  stamp.inode = static_cast<std::uintmax_t>(info.st_ino);
  stamp.size = static_cast<std::uintmax_t>(info.st_size);
  stamp.modifiedNanoseconds =
      static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec;
#else
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (status.type() == std::filesystem::file_type::not_found) return stamp;
  if (error) return std::nullopt;
  stamp.inode = 1;  // the file exists
  if (std::filesystem::is_regular_file(status)) {
    stamp.size = std::filesystem::file_size(file, error);
    stamp.modifiedNanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(
                                    std::filesystem::last_write_time(file, error).time_since_epoch())
                                    .count();
  }
  if (error) return std::nullopt;
#endif
  return stamp;
}

const PortableRegistry::Snapshot& PortableRegistry::Load() {
  // A settings file of many thousand keys takes a while to parse, and the program reads its settings
  // one value at a time: the parsed file is kept for as long as the file stays the same one. Writers
  // replace the file by renaming a new one over it, so every change shows as a new file.
  const std::optional<FileStamp> stamp = StampOf(file_);
  if (stamp && cachedStamp_ && *stamp == *cachedStamp_) return cached_;
  cachedStamp_.reset();
  cached_ = Snapshot{};
  lastRead_ = {};
  if (stamp && *stamp == FileStamp{}) {
    cachedStamp_ = stamp;
    return cached_;
  }
  std::error_code error;
  auto bytes = stamp ? base::ReadWholeFile(file_, &error) : std::nullopt;
  if (!bytes && error == std::errc::no_such_file_or_directory) return cached_;  // removed meanwhile
  if (!bytes) {
    cached_.readable = false;
    lastRead_.status = RegParseStatus::kUnreadable;
    lastRead_.description = stamp && base::IsNotARegularFile(error) ? "Registerfilen är ingen vanlig fil."
                                                                    : "Registerfilen kunde inte läsas.";
    return cached_;
  }
  if (!bytes->empty()) {
    RegTree tree;
    lastRead_ = ParseRegFile(*bytes, tree);
    if (lastRead_) {
      cached_.tree = std::move(tree);
    } else {
      cached_.broken = true;
    }
  }
  cachedStamp_ = stamp;
  return cached_;
}

RegParseResult PortableRegistry::ReadNow() {
  Load();
  return lastRead_;
}

std::optional<std::filesystem::path> PortableRegistry::BackUpBrokenFile() const {
  const std::string stem = file_.filename().string() + ".broken-" + Timestamp();
  for (int attempt = 1; attempt < 1000; ++attempt) {
    auto backup = file_.parent_path() / (attempt == 1 ? stem : stem + "-" + std::to_string(attempt));
    std::error_code error;
    if (std::filesystem::exists(backup, error)) continue;
    if (std::filesystem::copy_file(file_, backup, std::filesystem::copy_options::none, error) && !error) {
      return backup;
    }
    return std::nullopt;
  }
  return std::nullopt;
}

template <typename Change>
bool PortableRegistry::Update(Change change) {
  std::error_code error;
  if (file_.has_parent_path()) std::filesystem::create_directories(file_.parent_path(), error);
  const ExclusiveFileLock lock(LockPath(), lockGivenUp_ ? std::chrono::milliseconds(0) : lockWait_);
  if (!lock.Held()) {
    if (lock.TimedOut() && !lockGivenUp_) {
      lockGivenUp_ = true;
      if (lockTimedOut_) lockTimedOut_(LockPath());
    }
    return false;
  }
  // A write always reads the file afresh: a file replaced within the same clock tick by one of equal
  // size could reuse the inode and look unchanged, and a write must never undo another's.
  cachedStamp_.reset();
  const Snapshot& current = Load();
  if (!current.readable) return false;
  Snapshot changed = current;
  if (!change(changed.tree)) return false;
  // A file that did not parse is kept beside the new one rather than silently overwritten.
  if (changed.broken) {
    const auto backup = BackUpBrokenFile();
    if (!backup) return false;
    if (brokenFileKept_) brokenFileKept_(*backup);
  }
  cachedStamp_.reset();
  if (base::WriteFileAtomically(file_, SerializeRegFile(changed.tree))) return false;
  // Still under the lock, so the file on disk is the one just written.
  const auto stamp = StampOf(file_);
  if (stamp && *stamp != FileStamp{}) {
    changed.broken = false;
    cached_ = std::move(changed);
    lastRead_ = {};
    cachedStamp_ = stamp;
  }
  return true;
}

std::optional<RegistryValue> PortableRegistry::QueryValue(RootKey root, std::string_view keyPath,
                                                          std::string_view valueName) {
  const Snapshot& snapshot = Load();
  const RegKey* key = snapshot.tree.FindKey(root, keyPath);
  if (!key) return std::nullopt;
  const RegistryValue* value = key->FindValue(valueName);
  if (!value) return std::nullopt;
  return *value;
}

std::optional<std::string> PortableRegistry::SubkeyAt(RootKey root, std::string_view keyPath,
                                                      std::size_t index) {
  const Snapshot& snapshot = Load();
  const RegKey* key = snapshot.tree.FindKey(root, keyPath);
  if (!key || index >= key->Subkeys().size()) return std::nullopt;
  const std::string& name = key->Subkeys().At(index).Name();
  if (!SubkeyNameFitsEnumeration(name)) return std::nullopt;
  return name;
}

std::optional<RegistryValue> PortableRegistry::ValueAt(RootKey root, std::string_view keyPath,
                                                       std::size_t index) {
  const Snapshot& snapshot = Load();
  const RegKey* key = snapshot.tree.FindKey(root, keyPath);
  if (!key || index >= key->Values().size()) return std::nullopt;
  const RegistryValue& value = key->Values()[index];
  if (!ValueFitsEnumeration(value)) return std::nullopt;
  return value;
}

bool PortableRegistry::SetStringValue(RootKey root, std::string_view keyPath, std::string_view valueName,
                                      std::string_view text) {
  if (HasLineBreak(keyPath) || HasLineBreak(valueName)) return false;
  // A run saves the same folders and lengths as the run before it: a value the file already holds
  // is left as it is, without taking the lock or flushing a new file to the disk.
  if (const Snapshot& current = Load(); current.readable && !current.broken) {
    if (const RegKey* key = current.tree.FindKey(root, keyPath)) {
      if (const RegistryValue* value = key->FindValue(valueName);
          value && value->type == ValueType::kString && value->data == text) {
        return true;
      }
    }
  }
  return Update([&](RegTree& tree) {
    RegKey* key = tree.CreateKey(root, keyPath);
    if (!key) return false;
    key->SetValue(valueName, ValueType::kString, std::string(text));
    return true;
  });
}

bool PortableRegistry::DeleteValue(RootKey root, std::string_view keyPath, std::string_view valueName) {
  return Update([&](RegTree& tree) {
    RegKey* key = tree.FindKey(root, keyPath);
    return key && key->DeleteValue(valueName);
  });
}

RegParseResult PortableRegistry::MergeRegFile(const std::filesystem::path& regFile) {
  RegParseResult result;
  const auto bytes = base::ReadWholeFile(regFile);
  if (!bytes) {
    result.status = RegParseStatus::kUnreadable;
    result.description = "Filen \"" + regFile.filename().string() + "\" kunde inte läsas.";
    return result;
  }
  const bool written = Update([&](RegTree& tree) {
    RegTree merged = tree;
    result = ParseRegFile(*bytes, merged);
    if (!result) return false;
    tree = std::move(merged);
    return true;
  });
  if (result && !written) {
    result.status = RegParseStatus::kWriteFailed;
    result.description = "Registerfilen kunde inte skrivas.";
  }
  return result;
}

}  // namespace sw::cadenv
