#include "base/text_codec.h"

#include <array>
#include <cstdint>

namespace sw::base {
namespace {

// Code points of bytes 0x80..0x9F in Windows-1252; the rest of the page equals Latin-1.
constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

char32_t Windows1252ToCodePoint(unsigned char byte) {
  if (byte >= 0x80 && byte < 0xA0) return kHighControls[byte - 0x80];
  return byte;
}

// Decodes one UTF-8 sequence at `pos`; returns its length, or 0 when it is not well-formed.
std::size_t DecodeUtf8At(std::string_view s, std::size_t pos, char32_t& cp) {
  const auto b0 = static_cast<unsigned char>(s[pos]);
  if (b0 < 0x80) {
    cp = b0;
    return 1;
  }
  std::size_t len;
  char32_t min;
  if ((b0 & 0xE0) == 0xC0) {
    len = 2, cp = b0 & 0x1F, min = 0x80;
  } else if ((b0 & 0xF0) == 0xE0) {
    len = 3, cp = b0 & 0x0F, min = 0x800;
  } else if ((b0 & 0xF8) == 0xF0) {
    len = 4, cp = b0 & 0x07, min = 0x10000;
  } else {
    return 0;
  }
  if (pos + len > s.size()) return 0;
  for (std::size_t i = 1; i < len; ++i) {
    const auto b = static_cast<unsigned char>(s[pos + i]);
    if ((b & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (b & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return len;
}

}  // namespace

std::string DecodeWindows1252(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      out.push_back(c);
    } else {
      AppendUtf8(out, Windows1252ToCodePoint(byte));
    }
  }
  return out;
}

std::string EncodeWindows1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t pos = 0; pos < utf8.size();) {
    char32_t cp = 0;
    std::size_t len = DecodeUtf8At(utf8, pos, cp);
    if (len == 0) {  // not UTF-8: keep the byte as it is
      out.push_back(utf8[pos]);
      ++pos;
      continue;
    }
    pos += len;
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
      out.push_back(static_cast<char>(cp));
      continue;
    }
    char mapped = '?';
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
      if (kHighControls[i] == cp) {
        mapped = static_cast<char>(0x80 + i);
        break;
      }
    }
    out.push_back(mapped);
  }
  return out;
}

std::string DecodeUtf16Le(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() / 2 + bytes.size() / 8);
  const std::size_t units = bytes.size() / 2;
  auto unit = [&](std::size_t i) {
    return static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                 (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
  };
  for (std::size_t i = 0; i < units; ++i) {
    char32_t u = unit(i);
    if (u >= 0xD800 && u <= 0xDBFF && i + 1 < units) {
      char32_t low = unit(i + 1);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00));
        ++i;
        continue;
      }
    }
    if (u >= 0xD800 && u <= 0xDFFF) u = 0xFFFD;
    AppendUtf8(out, u);
  }
  return out;
}

std::string EncodeUtf16Le(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size() * 2);
  auto put = [&out](char32_t u) {
    out.push_back(static_cast<char>(u & 0xFF));
    out.push_back(static_cast<char>((u >> 8) & 0xFF));
  };
  for (std::size_t pos = 0; pos < utf8.size();) {
    char32_t cp = 0;
    std::size_t len = DecodeUtf8At(utf8, pos, cp);
    if (len == 0) {
      cp = Windows1252ToCodePoint(static_cast<unsigned char>(utf8[pos]));
      len = 1;
    }
    pos += len;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      put(0xD800 + (cp >> 10));
      put(0xDC00 + (cp & 0x3FF));
    } else {
      put(cp);
    }
  }
  return out;
}

DetectedEncoding DetectByteOrderMark(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return {TextEncoding::kUtf8, 3};
  if (bytes.starts_with("\xFF\xFE")) return {TextEncoding::kUtf16Le, 2};
  return {TextEncoding::kWindows1252, 0};
}

std::string DecodeText(std::string_view bytes) {
  const DetectedEncoding bom = DetectByteOrderMark(bytes);
  bytes.remove_prefix(bom.bomLength);
  switch (bom.encoding) {
    case TextEncoding::kUtf16Le:
      return DecodeUtf16Le(bytes);
    case TextEncoding::kUtf8: {
      if (IsValidUtf8(bytes)) return std::string(bytes);
      std::string out;
      for (std::size_t pos = 0; pos < bytes.size();) {
        char32_t cp = 0;
        std::size_t len = DecodeUtf8At(bytes, pos, cp);
        if (len == 0) {
          AppendUtf8(out, Windows1252ToCodePoint(static_cast<unsigned char>(bytes[pos])));
          ++pos;
        } else {
          out.append(bytes.substr(pos, len));
          pos += len;
        }
      }
      return out;
    }
    case TextEncoding::kWindows1252:
      break;
  }
  return DecodeWindows1252(bytes);
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t pos = 0; pos < text.size();) {
    char32_t cp = 0;
    std::size_t len = DecodeUtf8At(text, pos, cp);
    if (len == 0) return false;
    pos += len;
  }
  return true;
}

}  // namespace sw::base
