#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/strings.h"
#include "base/utf8_path.h"
#include "base/windows_path.h"

namespace sw::base {
namespace {

bool Exists(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::symlink_status(path, error).type() != std::filesystem::file_type::not_found &&
         !error;
}

// Calls onName for the name of each entry of `folder`.
template <typename OnName>
void ForEachEntryName(const std::filesystem::path& folder, OnName&& onName) {
  std::error_code error;
  std::filesystem::directory_iterator it(folder.empty() ? std::filesystem::path(".") : folder, error);
  for (; !error && it != std::filesystem::directory_iterator(); it.increment(error)) {
    // The name read in place: a page-by-page save looks through a folder of hundreds of pages.
    const std::string_view full = it->path().native();
    onName(full.substr(full.rfind('/') + 1));
  }
}

// Names that EqualsIgnoreCase may find equal have the same key: ASCII letters in upper case, and every
// byte of a multi-byte character alike.
std::string CandidateKey(std::string_view name) {
  std::string key(name);
  for (char& c : key) c = static_cast<unsigned char>(c) >= 0x80 ? '\x80' : AsciiUpperChar(c);
  return key;
}

// Folder listings kept while a FolderListingCache lives: folder -> its entry names by CandidateKey.
struct ListingCache {
  std::mutex mutex;
  int users = 0;
  std::unordered_map<std::string, std::unordered_multimap<std::string, std::string>> folders;
};

ListingCache& Listings() {
  static ListingCache cache;
  return cache;
}

// The entry of `folder` whose name equals `name` ignoring case; when several do (a case-sensitive file
// system can hold both), the first in byte order, so the choice is stable.
std::optional<std::filesystem::path> FindIgnoringCase(const std::filesystem::path& folder,
                                                      std::string_view name) {
  std::optional<std::string> best;
  const auto consider = [&](std::string_view entryName) {
    if (EqualsIgnoreCase(entryName, name) && (!best || entryName < *best)) best = std::string(entryName);
  };
  ListingCache& cache = Listings();
  std::unique_lock lock(cache.mutex);
  if (cache.users == 0) {
    lock.unlock();
    ForEachEntryName(folder, consider);
  } else {
    const auto inserted = cache.folders.try_emplace(folder.native());
    auto& names = inserted.first->second;
    if (inserted.second) {
      ForEachEntryName(folder, [&names](std::string_view entryName) {
        names.emplace(CandidateKey(entryName), std::string(entryName));
      });
    }
    const auto [first, last] = names.equal_range(CandidateKey(name));
    for (auto it = first; it != last; ++it) consider(it->second);
  }
  if (!best) return std::nullopt;
  return folder / PathFromUtf8(*best);
}

}  // namespace

FolderListingCache::FolderListingCache() {
  const std::lock_guard lock(Listings().mutex);
  ++Listings().users;
}

FolderListingCache::~FolderListingCache() {
  const std::lock_guard lock(Listings().mutex);
  if (--Listings().users == 0) Listings().folders.clear();
}

std::filesystem::path WindowsPathResolver::Resolve(std::string_view windowsPath) const {
  std::filesystem::path result;
  std::string_view rest = windowsPath;
  if (rest.size() >= 2 && rest[1] == ':' &&
      ((rest[0] >= 'A' && rest[0] <= 'Z') || (rest[0] >= 'a' && rest[0] <= 'z'))) {
    const char letter = AsciiUpperChar(rest[0]);
    if (auto it = drives_.find(letter); it != drives_.end()) {
      result = it->second;
      rest.remove_prefix(2);
    }
  } else if (!rest.empty() && (rest[0] == '\\' || rest[0] == '/')) {
    result = "/";
  }

  bool lookUp = true;  // once a part is missing, the parts below it cannot exist either
  std::size_t start = 0;
  while (start <= rest.size()) {
    const std::size_t end = std::min(rest.find_first_of("\\/", start), rest.size());
    const std::string_view part = rest.substr(start, end - start);
    start = end + 1;
    if (part.empty()) continue;
    const auto spelled = result / PathFromUtf8(part);
    if (!lookUp || part == "." || part == ".." || Exists(spelled)) {
      result = spelled;
      continue;
    }
    if (auto found = FindIgnoringCase(result, part)) {
      result = *found;
    } else {
      result = spelled;
      lookUp = false;
    }
  }
  return result;
}

}  // namespace sw::base
