#include "base/strings.h"

#include <algorithm>
#include <cstdint>

namespace sw::base {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

// Next code point of UTF-8 text folded to lower case for the Latin-1 range; other bytes pass as they are.
char32_t NextFolded(std::string_view s, std::size_t& pos) {
  const auto b0 = static_cast<unsigned char>(s[pos]);
  if (b0 < 0x80) {
    ++pos;
    return static_cast<unsigned char>(AsciiLowerChar(static_cast<char>(b0)));
  }
  if ((b0 & 0xE0) == 0xC0 && pos + 1 < s.size() && (static_cast<unsigned char>(s[pos + 1]) & 0xC0) == 0x80) {
    char32_t cp = ((b0 & 0x1F) << 6) | (static_cast<unsigned char>(s[pos + 1]) & 0x3F);
    pos += 2;
    if (cp >= 0xC0 && cp <= 0xDE && cp != 0xD7) cp += 0x20;
    return cp;
  }
  ++pos;
  return 0x110000 + b0;  // any other byte compares as itself, above every code point
}

}  // namespace

std::string_view TrimSpaces(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

std::string_view TrimBlanks(std::string_view text) {
  std::size_t begin = 0, end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

std::string AsciiUpper(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), AsciiUpperChar);
  return out;
}

std::string AsciiLower(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), AsciiLowerChar);
  return out;
}

int CompareIgnoreCase(std::string_view a, std::string_view b) {
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    const char32_t ca = NextFolded(a, i);
    const char32_t cb = NextFolded(b, j);
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return CompareIgnoreCase(a, b) == 0;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  if (from.empty()) return std::string(text);
  std::string result;
  std::size_t start = 0;
  for (std::size_t at = text.find(from); at != std::string_view::npos; at = text.find(from, start)) {
    result.append(text.substr(start, at - start)).append(to);
    start = at + from.size();
  }
  result.append(text.substr(start));
  return result;
}

std::size_t FindIgnoreCase(std::string_view text, std::string_view wanted) {
  if (wanted.size() > text.size()) return std::string_view::npos;
  for (std::size_t at = 0; at + wanted.size() <= text.size(); ++at) {
    if (EqualsIgnoreCase(text.substr(at, wanted.size()), wanted)) return at;
  }
  return std::string_view::npos;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (;;) {
    const auto at = text.find(separator, start);
    if (at == std::string_view::npos) {
      pieces.push_back(text.substr(start));
      return pieces;
    }
    pieces.push_back(text.substr(start, at - start));
    start = at + 1;
  }
}

std::string_view CutToUtf16Units(std::string_view text, std::size_t units) {
  std::size_t used = 0;
  std::size_t at = 0;
  while (at < text.size()) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    const std::size_t cost = length == 4 ? 2 : 1;
    if (used + cost > units) break;
    used += cost;
    at = std::min(at + length, text.size());
  }
  return text.substr(0, at);
}

}  // namespace sw::base
