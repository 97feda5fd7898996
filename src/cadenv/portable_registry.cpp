#include "cadenv/portable_registry.h"

#include <ctime>
#include <system_error>

#include "base/environment.h"
#include "base/file_io.h"
#include "base/program_folder.h"
#include "base/text_codec.h"
#include "cadenv/file_lock.h"

namespace sw::cadenv {
namespace {

// A name the registration file could not hold: its lines cannot carry a line break.
bool HasLineBreak(std::string_view name) {
  return name.find_first_of("\r\n") != std::string_view::npos;
}

std::filesystem::path PathFromUtf8(const std::string& text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string Timestamp() {
  const std::time_t now = std::time(nullptr);
  char text[32] = "";
  if (const std::tm* local = std::localtime(&now)) std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", local);
  return text;
}

// Windows enumerates into name and data buffers of 2048 characters (see win32_registry.cpp); a value
// that does not fit reads as the end there, so it does here too.
bool FitsEnumerationBuffers(const RegistryValue& value) {
  constexpr std::size_t kBufferChars = 2048;
  const auto utf16Chars = [](std::string_view text) { return base::EncodeUtf16Le(text).size() / 2; };
  if (utf16Chars(value.name) >= kBufferChars) return false;
  std::size_t dataBytes = value.data.size();
  if (value.type == ValueType::kString || value.type == ValueType::kExpandString) {
    dataBytes = (utf16Chars(value.data) + 1) * 2;
  } else if (value.type == ValueType::kMultiString) {
    dataBytes = (utf16Chars(value.data) + 2) * 2;
  }
  return dataBytes <= kBufferChars * 2;
}

}  // namespace

PortableRegistry::PortableRegistry(std::filesystem::path file) : file_(std::move(file)) {}

std::filesystem::path PortableRegistry::DefaultPath(const base::Environment& environment) {
  if (auto explicitPath = environment.Get("SHEETWRIGHT_REGISTRY"); explicitPath && !explicitPath->empty()) {
    return PathFromUtf8(*explicitPath);
  }
  const std::filesystem::path relative = std::filesystem::path("sheetwright") / "registry.reg";
  if (auto config = environment.Get("XDG_CONFIG_HOME"); config && !config->empty()) {
    const auto folder = PathFromUtf8(*config);
    if (folder.is_absolute()) return folder / relative;
  }
  if (auto home = environment.Get("HOME"); home && !home->empty()) {
    return PathFromUtf8(*home) / ".config" / relative;
  }
  return base::ProgramFolder() / "registry.reg";
}

std::filesystem::path PortableRegistry::LockPath() const {
  auto lock = file_;
  lock += ".lock";
  return lock;
}

PortableRegistry::Snapshot PortableRegistry::Load() {
  Snapshot snapshot;
  lastRead_ = {};
  std::error_code error;
  const bool exists = std::filesystem::exists(file_, error);
  const auto bytes = exists ? base::ReadWholeFile(file_) : std::nullopt;
  if (error || (exists && !bytes)) {
    snapshot.readable = false;
    lastRead_.status = RegParseStatus::kUnreadable;
    lastRead_.description = "Registerfilen kunde inte läsas.";
    return snapshot;
  }
  if (!bytes || bytes->empty()) return snapshot;
  RegTree tree;
  lastRead_ = ParseRegFile(*bytes, tree);
  if (lastRead_) {
    snapshot.tree = std::move(tree);
  } else {
    snapshot.broken = true;
  }
  return snapshot;
}

bool PortableRegistry::BackUpBrokenFile() const {
  const std::string stem = file_.filename().string() + ".broken-" + Timestamp();
  for (int attempt = 1; attempt < 1000; ++attempt) {
    auto backup = file_.parent_path() / (attempt == 1 ? stem : stem + "-" + std::to_string(attempt));
    std::error_code error;
    if (std::filesystem::exists(backup, error)) continue;
    return std::filesystem::copy_file(file_, backup, std::filesystem::copy_options::none, error) && !error;
  }
  return false;
}

template <typename Change>
bool PortableRegistry::Update(Change change) {
  std::error_code error;
  if (file_.has_parent_path()) std::filesystem::create_directories(file_.parent_path(), error);
  const ExclusiveFileLock lock(LockPath());
  if (!lock.Held()) return false;
  Snapshot snapshot = Load();
  if (!snapshot.readable || !change(snapshot.tree)) return false;
  // A file that did not parse is kept beside the new one rather than silently overwritten.
  if (snapshot.broken && !BackUpBrokenFile()) return false;
  return !base::WriteFileAtomically(file_, SerializeRegFile(snapshot.tree));
}

std::optional<RegistryValue> PortableRegistry::QueryValue(RootKey root, std::string_view keyPath,
                                                          std::string_view valueName) {
  const Snapshot snapshot = Load();
  const RegKey* key = snapshot.tree.FindKey(root, keyPath);
  if (!key) return std::nullopt;
  const RegistryValue* value = key->FindValue(valueName);
  if (!value) return std::nullopt;
  return *value;
}

std::optional<std::string> PortableRegistry::SubkeyAt(RootKey root, std::string_view keyPath,
                                                      std::size_t index) {
  const Snapshot snapshot = Load();
  const RegKey* key = snapshot.tree.FindKey(root, keyPath);
  if (!key || index >= key->Subkeys().size()) return std::nullopt;
  return key->Subkeys()[index].Name();
}

std::optional<RegistryValue> PortableRegistry::ValueAt(RootKey root, std::string_view keyPath,
                                                       std::size_t index) {
  const Snapshot snapshot = Load();
  const RegKey* key = snapshot.tree.FindKey(root, keyPath);
  if (!key || index >= key->Values().size() || !FitsEnumerationBuffers(key->Values()[index]))
    return std::nullopt;
  return key->Values()[index];
}

bool PortableRegistry::SetStringValue(RootKey root, std::string_view keyPath, std::string_view valueName,
                                      std::string_view text) {
  if (HasLineBreak(keyPath) || HasLineBreak(valueName)) return false;
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
