#pragma once
// An in-memory registry: the two hives the program uses, each a tree of keys holding values. Subkeys
// are kept in the order Windows enumerates them, values in the order they were created.
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cadenv/registry.h"

namespace sw::cadenv {

// Windows refuses registry trees deeper than this.
inline constexpr std::size_t kMaxKeyDepth = 512;

// Orders key and value names as Windows does: by their upper-cased characters, so "A_B" follows "AB"
// ('_' sorts after the letters). ASCII and Latin-1 letters fold; <0, 0, >0 like strcmp.
int CompareRegistryNames(std::string_view a, std::string_view b);
inline bool SameRegistryName(std::string_view a, std::string_view b) {
  return CompareRegistryNames(a, b) == 0;
}

// "HKEY_CURRENT_USER"/"HKCU" and "HKEY_LOCAL_MACHINE"/"HKLM", ignoring case.
std::optional<RootKey> ParseRootName(std::string_view name);
std::string_view RootName(RootKey root);

// The names of a "\"-separated key path; empty pieces (doubled, leading or trailing "\") are skipped.
std::vector<std::string_view> SplitKeyPath(std::string_view path);

class RegKey;

// A key's subkeys in order, read as RegKey. (A plain class: clang 14's ranges do not accept
// libstdc++ 12's views over a map.)
class SubkeyList {
 public:
  using Map = std::map<std::string, RegKey>;
  class Iterator {
   public:
    explicit Iterator(Map::const_iterator at) : at_(at) {}
    const RegKey& operator*() const;
    Iterator& operator++();
    bool operator==(const Iterator& other) const;

   private:
    Map::const_iterator at_;
  };
  explicit SubkeyList(const Map& map) : map_(map) {}
  Iterator begin() const;
  Iterator end() const;
  std::size_t size() const;
  bool empty() const { return size() == 0; }
  // The subkey at `index` (less than size()).
  const RegKey& At(std::size_t index) const;

 private:
  const Map& map_;
};

class RegKey {
 public:
  RegKey() = default;
  explicit RegKey(std::string name) : name_(std::move(name)) {}

  const std::string& Name() const { return name_; }
  const std::vector<RegistryValue>& Values() const { return values_; }
  // In Windows' order, sorted by name ignoring case.
  SubkeyList Subkeys() const;

  const RegistryValue* FindValue(std::string_view name) const;
  // An existing value of that name keeps its place and its name's spelling; a new one goes last.
  void SetValue(std::string_view name, ValueType type, std::string data);
  bool DeleteValue(std::string_view name);

  const RegKey* FindSubkey(std::string_view name) const;
  RegKey* FindSubkey(std::string_view name);
  // The subkey of that name, created when missing.
  RegKey& CreateSubkey(std::string_view name);
  // Removes the subkey and everything below it.
  bool DeleteSubkey(std::string_view name);

  bool operator==(const RegKey&) const = default;

 private:
  // The name with every character upper-cased as CompareRegistryNames sees it: equal names fold alike.
  static std::string FoldedName(std::string_view name);

  std::string name_;
  std::vector<RegistryValue> values_;
  std::unordered_map<std::string, std::size_t> valueIndex_;  // folded name -> position in values_
  // By folded name, whose byte order is CompareRegistryNames' order: a file of many thousand keys in
  // any order parses without shifting the keys already read.
  std::map<std::string, RegKey> subkeys_;
};

inline SubkeyList RegKey::Subkeys() const {
  return SubkeyList(subkeys_);
}
inline const RegKey& SubkeyList::Iterator::operator*() const {
  return at_->second;
}
inline SubkeyList::Iterator& SubkeyList::Iterator::operator++() {
  ++at_;
  return *this;
}
inline bool SubkeyList::Iterator::operator==(const Iterator& other) const {
  return at_ == other.at_;
}
inline SubkeyList::Iterator SubkeyList::begin() const {
  return Iterator(map_.begin());
}
inline SubkeyList::Iterator SubkeyList::end() const {
  return Iterator(map_.end());
}
inline std::size_t SubkeyList::size() const {
  return map_.size();
}
inline const RegKey& SubkeyList::At(std::size_t index) const {
  return std::next(map_.begin(), static_cast<std::ptrdiff_t>(index))->second;
}

class RegTree {
 public:
  RegKey& Hive(RootKey root) { return root == RootKey::kCurrentUser ? currentUser_ : localMachine_; }
  const RegKey& Hive(RootKey root) const {
    return root == RootKey::kCurrentUser ? currentUser_ : localMachine_;
  }

  // Nothing when the key or one of its parents is missing.
  const RegKey* FindKey(RootKey root, std::string_view path) const;
  RegKey* FindKey(RootKey root, std::string_view path);
  // Creates the key with its missing parents; nothing when the path is deeper than kMaxKeyDepth.
  RegKey* CreateKey(RootKey root, std::string_view path);
  // Removes the key and its whole tree; a hive itself cannot be removed.
  bool DeleteKey(RootKey root, std::string_view path);

  bool operator==(const RegTree&) const = default;

 private:
  RegKey currentUser_{"HKEY_CURRENT_USER"};
  RegKey localMachine_{"HKEY_LOCAL_MACHINE"};
};

}  // namespace sw::cadenv
