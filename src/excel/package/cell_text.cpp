#include "excel/package/cell_text.h"

#include <cstdio>

#include "base/text_codec.h"

namespace sw::excel {

namespace {

bool IsHex(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

bool IsEscape(std::string_view text, std::size_t at) {
  return at + 7 <= text.size() && text[at] == '_' && text[at + 1] == 'x' && IsHex(text[at + 2]) &&
         IsHex(text[at + 3]) && IsHex(text[at + 4]) && IsHex(text[at + 5]) && text[at + 6] == '_';
}

}  // namespace

std::string EncodeCellText(std::string_view text) {
  // Text that is not UTF-8 came from a Windows file that skipped decoding; take it as ANSI.
  const std::string utf8 = base::IsValidUtf8(text) ? std::string(text) : base::DecodeWindows1252(text);
  std::string encoded;
  encoded.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto c = static_cast<unsigned char>(utf8[i]);
    if ((c < 0x20 && c != '\t' && c != '\n') || c == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "_x%04X_", c);
      encoded += escape;
    } else if (c == '_' && IsEscape(utf8, i)) {
      encoded += "_x005F_";
    } else if (c == 0xEF && i + 2 < utf8.size() && static_cast<unsigned char>(utf8[i + 1]) == 0xBF &&
               static_cast<unsigned char>(utf8[i + 2]) >= 0xBE) {
      encoded += "\xEF\xBF\xBD";  // U+FFFE and U+FFFF are not XML characters
      i += 2;
    } else {
      encoded += static_cast<char>(c);
    }
  }
  return encoded;
}

std::string DecodeCellText(std::string_view stored) {
  std::string decoded;
  decoded.reserve(stored.size());
  for (std::size_t i = 0; i < stored.size(); ++i) {
    if (IsEscape(stored, i)) {
      const unsigned value =
          static_cast<unsigned>(std::stoul(std::string(stored.substr(i + 2, 4)), nullptr, 16));
      if (value < 0x80) {
        decoded += static_cast<char>(value);
      } else if (value < 0x800) {
        decoded += static_cast<char>(0xC0 | (value >> 6));
        decoded += static_cast<char>(0x80 | (value & 0x3F));
      } else {
        decoded += static_cast<char>(0xE0 | (value >> 12));
        decoded += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
        decoded += static_cast<char>(0x80 | (value & 0x3F));
      }
      i += 6;
    } else {
      decoded += stored[i];
    }
  }
  return decoded;
}

}  // namespace sw::excel
