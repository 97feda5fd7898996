#include "cadenv/reg_tree.h"

#include <algorithm>

#include "base/strings.h"

namespace sw::cadenv {
namespace {

// The next character of UTF-8 text, upper-cased for ASCII and Latin-1; a byte that does not start a
// well-formed sequence compares as itself, above every character.
char32_t NextUpper(std::string_view s, std::size_t& pos) {
  const auto b0 = static_cast<unsigned char>(s[pos]);
  if (b0 < 0x80) {
    ++pos;
    return static_cast<unsigned char>(base::AsciiUpperChar(static_cast<char>(b0)));
  }
  std::size_t length = (b0 & 0xE0) == 0xC0 ? 2 : (b0 & 0xF0) == 0xE0 ? 3 : (b0 & 0xF8) == 0xF0 ? 4 : 0;
  if (length == 0 || pos + length > s.size()) {
    ++pos;
    return 0x110000 + b0;
  }
  char32_t cp = b0 & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto b = static_cast<unsigned char>(s[pos + i]);
    if ((b & 0xC0) != 0x80) {
      ++pos;
      return 0x110000 + b0;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  pos += length;
  if (cp >= 0xE0 && cp <= 0xFE && cp != 0xF7) return cp - 0x20;
  if (cp == 0xFF) return 0x178;
  return cp;
}

}  // namespace

int CompareRegistryNames(std::string_view a, std::string_view b) {
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    const char32_t ca = NextUpper(a, i);
    const char32_t cb = NextUpper(b, j);
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

std::optional<RootKey> ParseRootName(std::string_view name) {
  if (SameRegistryName(name, "HKEY_CURRENT_USER") || SameRegistryName(name, "HKCU"))
    return RootKey::kCurrentUser;
  if (SameRegistryName(name, "HKEY_LOCAL_MACHINE") || SameRegistryName(name, "HKLM")) {
    return RootKey::kLocalMachine;
  }
  return std::nullopt;
}

std::string_view RootName(RootKey root) {
  return root == RootKey::kCurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

std::vector<std::string_view> SplitKeyPath(std::string_view path) {
  std::vector<std::string_view> names;
  std::size_t start = 0;
  while (start <= path.size()) {
    std::size_t end = path.find('\\', start);
    if (end == std::string_view::npos) end = path.size();
    if (end > start) names.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

std::string RegKey::FoldedName(std::string_view name) {
  std::string folded;
  folded.reserve(name.size() * 3);
  for (std::size_t pos = 0; pos < name.size();) {
    const char32_t c = NextUpper(name, pos);
    folded += static_cast<char>(c >> 16);
    folded += static_cast<char>((c >> 8) & 0xFF);
    folded += static_cast<char>(c & 0xFF);
  }
  return folded;
}

const RegistryValue* RegKey::FindValue(std::string_view name) const {
  const auto it = valueIndex_.find(FoldedName(name));
  return it == valueIndex_.end() ? nullptr : &values_[it->second];
}

void RegKey::SetValue(std::string_view name, ValueType type, std::string data) {
  // A key of many thousand values is read one value line at a time: each line finds its value by
  // the index, not by comparing it with every value before it.
  const auto [it, added] = valueIndex_.try_emplace(FoldedName(name), values_.size());
  if (!added) {
    RegistryValue& value = values_[it->second];
    value.type = type;
    value.data = std::move(data);
    return;
  }
  values_.push_back(RegistryValue{std::string(name), type, std::move(data)});
}

bool RegKey::DeleteValue(std::string_view name) {
  const auto it = valueIndex_.find(FoldedName(name));
  if (it == valueIndex_.end()) return false;
  const std::size_t position = it->second;
  valueIndex_.erase(it);
  values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(position));
  for (auto& entry : valueIndex_) {
    if (entry.second > position) --entry.second;
  }
  return true;
}

const RegKey* RegKey::FindSubkey(std::string_view name) const {
  const auto it = subkeys_.find(FoldedName(name));
  return it == subkeys_.end() ? nullptr : &it->second;
}

RegKey* RegKey::FindSubkey(std::string_view name) {
  return const_cast<RegKey*>(static_cast<const RegKey*>(this)->FindSubkey(name));
}

RegKey& RegKey::CreateSubkey(std::string_view name) {
  auto it = subkeys_.find(FoldedName(name));
  if (it == subkeys_.end()) it = subkeys_.emplace(FoldedName(name), RegKey(std::string(name))).first;
  return it->second;
}

bool RegKey::DeleteSubkey(std::string_view name) {
  return subkeys_.erase(FoldedName(name)) > 0;
}

const RegKey* RegTree::FindKey(RootKey root, std::string_view path) const {
  const RegKey* key = &Hive(root);
  for (const auto name : SplitKeyPath(path)) {
    key = key->FindSubkey(name);
    if (!key) return nullptr;
  }
  return key;
}

RegKey* RegTree::FindKey(RootKey root, std::string_view path) {
  return const_cast<RegKey*>(static_cast<const RegTree*>(this)->FindKey(root, path));
}

RegKey* RegTree::CreateKey(RootKey root, std::string_view path) {
  const auto names = SplitKeyPath(path);
  if (names.size() > kMaxKeyDepth) return nullptr;
  RegKey* key = &Hive(root);
  for (const auto name : names) key = &key->CreateSubkey(name);
  return key;
}

bool RegTree::DeleteKey(RootKey root, std::string_view path) {
  auto names = SplitKeyPath(path);
  if (names.empty()) return false;
  const auto last = names.back();
  names.pop_back();
  RegKey* parent = &Hive(root);
  for (const auto name : names) {
    parent = parent->FindSubkey(name);
    if (!parent) return false;
  }
  return parent->DeleteSubkey(last);
}

}  // namespace sw::cadenv
