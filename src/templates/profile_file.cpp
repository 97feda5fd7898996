#include "templates/profile_file.h"

#include "base/strings.h"
#include "base/text_codec.h"

namespace sw::templates {
namespace {

const char* Describe(ProfileStatus status) {
  switch (status) {
    case ProfileStatus::kOk:
      return "No error";
    case ProfileStatus::kFileNotFound:
      return "File not found or not readable";
    case ProfileStatus::kSectionNotFound:
      return "Section not found";
    case ProfileStatus::kKeyNotFound:
      return "Key not found";
    case ProfileStatus::kTruncated:
      return "Result cut to the buffer size";
  }
  return "Unknown status";
}

// The ANSI text the A calls see: a UTF-16LE file is converted, anything else is taken as it is.
std::string AnsiText(std::string_view bytes) {
  const auto detected = base::DetectByteOrderMark(bytes);
  if (detected.encoding == base::TextEncoding::kUtf16Le) {
    return base::EncodeWindows1252(base::DecodeUtf16Le(bytes.substr(detected.bomLength)));
  }
  return std::string(bytes);
}

}  // namespace

const char* ProfileSectionResult::Description() const {
  return Describe(status);
}
const char* ProfileValueResult::Description() const {
  return Describe(status);
}

ProfileText ProfileText::Parse(std::string_view fileBytes) {
  ProfileText profile;
  const std::string text = AnsiText(fileBytes);
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find_first_of("\r\n", start);
    if (end == std::string::npos) end = text.size();
    const std::string_view line = base::TrimBlanks(std::string_view(text).substr(start, end - start));
    start = end + 1;
    if (end < text.size() && text[end] == '\r' && start < text.size() && text[start] == '\n') ++start;

    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[') {
      std::string_view name = line.substr(1);
      name = name.substr(0, name.find(']'));
      profile.sections_.push_back({base::DecodeWindows1252(base::TrimBlanks(name)), {}});
      continue;
    }
    if (profile.sections_.empty()) continue;
    Line entry;
    if (const auto equals = line.find('='); equals != std::string_view::npos) {
      entry.key = base::TrimBlanks(line.substr(0, equals));
      entry.value = base::TrimBlanks(line.substr(equals + 1));
      entry.hasEquals = true;
    } else {
      entry.key = line;
    }
    profile.sections_.back().lines.push_back(std::move(entry));
  }
  return profile;
}

const ProfileText::SectionData* ProfileText::Find(std::string_view name) const {
  for (const auto& section : sections_) {
    if (base::EqualsIgnoreCase(section.name, name)) return &section;
  }
  return nullptr;
}

ProfileSectionResult ProfileText::Section(std::string_view section, std::size_t bufferSize) const {
  ProfileSectionResult result;
  const auto* found = Find(section);
  if (!found) {
    result.status = ProfileStatus::kSectionNotFound;
    return result;
  }
  // Room for the text and its NUL separators; the last two characters hold the closing NULs.
  const std::size_t capacity = bufferSize >= 2 ? bufferSize - 2 : 0;
  std::size_t used = 0;
  for (const auto& line : found->lines) {
    std::string ansi = line.hasEquals ? line.key + "=" + line.value : line.key;
    if (used + ansi.size() > capacity) {
      if (used < capacity) result.lines.push_back(base::DecodeWindows1252(ansi.substr(0, capacity - used)));
      result.status = ProfileStatus::kTruncated;
      break;
    }
    used += ansi.size() + 1;
    result.lines.push_back(base::DecodeWindows1252(ansi));
  }
  return result;
}

ProfileValueResult ProfileText::Value(std::string_view section, std::string_view key,
                                      std::size_t bufferSize) const {
  ProfileValueResult result;
  const auto* found = Find(section);
  if (!found) {
    result.status = ProfileStatus::kSectionNotFound;
    return result;
  }
  for (const auto& line : found->lines) {
    if (!base::EqualsIgnoreCase(base::DecodeWindows1252(line.key), key)) continue;
    std::string_view value = line.value;
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
      value = value.substr(1, value.size() - 2);
    }
    const std::size_t room = bufferSize >= 1 ? bufferSize - 1 : 0;
    if (value.size() > room) {
      value = value.substr(0, room);
      result.status = ProfileStatus::kTruncated;
    }
    result.value = base::DecodeWindows1252(value);
    return result;
  }
  result.status = ProfileStatus::kKeyNotFound;
  return result;
}

}  // namespace sw::templates
