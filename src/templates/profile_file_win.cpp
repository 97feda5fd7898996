#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "base/text_codec.h"
#include "base/windows_path.h"
#include "templates/profile_file.h"

// On Windows the program asks Windows itself, through GetPrivateProfileSectionA and
// GetPrivateProfileStringA with the buffers the CAD-era program used, so a file reads exactly as the
// CAD system and its other tools read it. The A calls speak the ANSI code page: names go in and
// results come out as Windows-1252, converted at this edge as the portable reader does.
namespace sw::templates {
namespace {

// Returned for a key that is not there; no profile value can hold the control characters.
constexpr char kMissingValue[] = "\x01\x02sheetwright-missing\x02\x01";

std::string AnsiFromWide(const std::wstring& wide, bool& lossy) {
  BOOL usedDefault = FALSE;
  const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(),
                                       static_cast<int>(wide.size()), nullptr, 0, nullptr, &usedDefault);
  std::string ansi(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
  if (size > 0) {
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()), ansi.data(),
                        size, nullptr, &usedDefault);
  }
  lossy = usedDefault != FALSE;
  return ansi;
}

// The file name as the A calls take it. A name the code page cannot spell is handed over by its short
// (8.3) name when the volume keeps one; otherwise it reads as missing, as it would for the CAD system.
std::string AnsiPath(const std::wstring& wide) {
  bool lossy = false;
  std::string ansi = AnsiFromWide(wide, lossy);
  if (!lossy) return ansi;
  std::vector<wchar_t> shortName(MAX_PATH);
  const DWORD length =
      GetShortPathNameW(wide.c_str(), shortName.data(), static_cast<DWORD>(shortName.size()));
  if (length == 0 || length >= shortName.size()) return ansi;
  return AnsiFromWide(std::wstring(shortName.data(), length), lossy);
}

// A bare name is looked up by the calls in the Windows folder, a path with a folder where it says.
bool IsProfileFile(const std::wstring& wide) {
  std::wstring lookup = wide;
  if (wide.find_first_of(L"\\/:") == std::wstring::npos) {
    std::vector<wchar_t> folder(MAX_PATH);
    const UINT length = GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    if (length == 0 || length >= folder.size()) return false;
    lookup = std::wstring(folder.data(), length) + L"\\" + wide;
  }
  const DWORD attributes = GetFileAttributesW(lookup.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The file the program names, or nothing when there is no such file. Windows keeps the last profile
// file it read in memory and trusts it while the time stamp stays the same, so a file rewritten within
// the same tick would read as before: the cached copy is dropped first (the documented flush call,
// which writes nothing because nothing was changed through it).
std::optional<std::string> OpenProfile(std::string_view iniPath) {
  const std::wstring wide = base::ResolveWindowsPath(iniPath).wstring();
  if (!IsProfileFile(wide)) return std::nullopt;
  std::string ansi = AnsiPath(wide);
  WritePrivateProfileStringA(nullptr, nullptr, nullptr, ansi.c_str());
  return ansi;
}

// The NUL-separated text the section call returns, as lines in UTF-8.
std::vector<std::string> SplitSection(const std::vector<char>& buffer, DWORD length) {
  std::vector<std::string> lines;
  std::string line;
  for (DWORD i = 0; i < length && i < buffer.size(); ++i) {
    if (buffer[i] == '\0') {
      lines.push_back(base::DecodeWindows1252(line));
      line.clear();
    } else {
      line += buffer[i];
    }
  }
  if (!line.empty()) lines.push_back(base::DecodeWindows1252(line));
  return lines;
}

DWORD SectionLength(const std::string& section, std::vector<char>& buffer, const std::string& file) {
  return GetPrivateProfileSectionA(section.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()),
                                   file.c_str());
}

// An empty section and a missing one both read as nothing; the list of section names tells them apart.
bool HasSection(std::string_view section, const std::string& file) {
  std::vector<char> buffer(kSectionBufferSize);
  DWORD length = 0;
  for (;;) {
    length = GetPrivateProfileSectionNamesA(buffer.data(), static_cast<DWORD>(buffer.size()), file.c_str());
    if (length + 2 < buffer.size()) break;
    buffer.resize(buffer.size() * 2);
  }
  for (const auto& name : SplitSection(buffer, length)) {
    if (base::EqualsIgnoreCase(name, section)) return true;
  }
  return false;
}

}  // namespace

ProfileSectionResult ReadIniSection(std::string_view section, std::string_view iniPath) {
  const auto file = OpenProfile(iniPath);
  if (!file) return {{}, ProfileStatus::kFileNotFound};
  const std::string ansiSection = base::EncodeWindows1252(section);
  std::vector<char> buffer(kSectionBufferSize);
  const DWORD length = SectionLength(ansiSection, buffer, *file);
  ProfileSectionResult result{SplitSection(buffer, length), ProfileStatus::kOk};
  if (length == 0 && !HasSection(section, *file)) {
    result.status = ProfileStatus::kSectionNotFound;
  } else if (length + 2 >= buffer.size()) {
    // A full buffer is either an exact fit or a cut (Wine reports a cut for an exact fit too); the
    // same call with a bigger buffer shows which.
    std::vector<char> larger(buffer.size() * 2);
    if (SplitSection(larger, SectionLength(ansiSection, larger, *file)) != result.lines) {
      result.status = ProfileStatus::kTruncated;
    }
  }
  return result;
}

std::string ReadIniValue(std::string_view section, std::string_view key, std::string_view iniPath) {
  const auto file = OpenProfile(iniPath);
  if (!file) return {};
  std::vector<char> buffer(kValueBufferSize);
  const DWORD length = GetPrivateProfileStringA(
      base::EncodeWindows1252(section).c_str(), base::EncodeWindows1252(key).c_str(), kMissingValue,
      buffer.data(), static_cast<DWORD>(buffer.size()), file->c_str());
  const std::string value(buffer.data(), std::min<std::size_t>(length, buffer.size()));
  if (value == kMissingValue) return {};
  return base::DecodeWindows1252(value);
}

// Windows keeps the file's text itself; each call asks it, so the file reads exactly as above.
ProfileFile::ProfileFile(std::string_view iniPath)
    : path_(iniPath), found_(OpenProfile(iniPath).has_value()) {}

ProfileSectionResult ProfileFile::Section(std::string_view section) const {
  return ReadIniSection(section, path_);
}

std::string ProfileFile::Value(std::string_view section, std::string_view key) const {
  return ReadIniValue(section, key, path_);
}

}  // namespace sw::templates
