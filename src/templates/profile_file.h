#pragma once
// Profile (INI) files read the way Windows' GetPrivateProfileSectionA and GetPrivateProfileStringA read
// them, on every platform, so templates and the CAD system's VOLTARIS.INI behave the same everywhere:
// - section and key names match ignoring case; only the first of two equal sections is searched and
//   the first of two equal keys wins; lines before the first section cannot be read;
// - names and values lose surrounding blanks (space, tab, CR, LF, VT, FF); "[ Name ]x" opens section
//   "Name" (text after "]" is ignored, a missing "]" still opens the section);
// - a line whose first non-blank character is ";" is a comment; "#" is not; there are no inline comments;
// - CR LF, lone CR and lone LF end lines; the file is Windows-1252 unless it starts with a UTF-16LE BOM
//   (a UTF-8 BOM is not understood: it stays part of the first line, as on Windows);
// - the calls work on ANSI text, so buffer limits count Windows-1252 bytes; results come back as UTF-8.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sw::templates {

// The buffers the program hands to Windows.
inline constexpr std::size_t kSectionBufferSize = 8192;
inline constexpr std::size_t kValueBufferSize = 2047;

enum class ProfileStatus {
  kOk,
  kFileNotFound,     // reads as empty
  kSectionNotFound,  // reads as empty (an empty section reads the same, with kOk)
  kKeyNotFound,      // reads as the empty default
  kTruncated,        // the buffer was too small; the result is cut as Windows cuts it
};

struct ProfileSectionResult {
  // The section's lines, as the NUL-separated section text splits: "key=value" with key and value
  // trimmed, a line without "=" trimmed, no empty lines and no comments. Quotes are kept.
  std::vector<std::string> lines;
  ProfileStatus status = ProfileStatus::kOk;
  const char* Description() const;
};

struct ProfileValueResult {
  std::string value;  // trimmed, one pair of matching outer quotes (" or ') removed
  ProfileStatus status = ProfileStatus::kOk;
  const char* Description() const;
};

// A profile file's text, parsed once.
class ProfileText {
 public:
  // Any bytes are accepted; nothing is rejected.
  static ProfileText Parse(std::string_view fileBytes);

  // GetPrivateProfileSectionA into a buffer of `bufferSize` characters. When the section does not fit,
  // Windows fills size − 2 characters: the lines that fit and the next one cut short.
  ProfileSectionResult Section(std::string_view section, std::size_t bufferSize = kSectionBufferSize) const;

  // GetPrivateProfileStringA with an empty default: a value longer than bufferSize − 1 is cut to it.
  ProfileValueResult Value(std::string_view section, std::string_view key,
                           std::size_t bufferSize = kValueBufferSize) const;

 private:
  struct Line {
    std::string key;    // Windows-1252, trimmed; the whole line when it has no "="
    std::string value;  // Windows-1252, trimmed
    bool hasEquals = false;
  };
  struct SectionData {
    std::string name;  // UTF-8, for the comparison
    std::vector<Line> lines;
  };
  const SectionData* Find(std::string_view name) const;

  std::vector<SectionData> sections_;
};

// The two calls on the file a Windows path names (see base/windows_path.h), with the buffers above. On
// Windows they are the Windows calls themselves (a bare file name reads from the Windows folder, as
// there); elsewhere ProfileText reads the file. A missing or unreadable file reads as empty. Callers
// that only need the lines use `.lines`.
ProfileSectionResult ReadIniSection(std::string_view section, std::string_view iniPath);
std::string ReadIniValue(std::string_view section, std::string_view key, std::string_view iniPath);

// One profile file for several calls, as the template readers ask one file many things at once.
// Elsewhere than on Windows its bytes are read once, when it is opened; on Windows every call asks
// Windows, which keeps the file's text itself.
class ProfileFile {
 public:
  explicit ProfileFile(std::string_view iniPath);
  // Whether there was a file to read (a missing or unreadable one reads as empty).
  bool Found() const { return found_; }
  ProfileSectionResult Section(std::string_view section) const;
  std::string Value(std::string_view section, std::string_view key) const;

 private:
  std::string path_;
  bool found_ = false;
  std::optional<ProfileText> text_;  // where our own reader reads the file
};

}  // namespace sw::templates
