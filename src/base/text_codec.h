#pragma once
// Conversions at the program's edges. Inside the program all text is UTF-8; the CAD system and
// Windows tools write Windows-1252 ("ANSI") or UTF-16LE files.
#include <string>
#include <string_view>

namespace sw::base {

// Windows-1252 bytes to UTF-8. The five bytes that code page leaves undefined (0x81, 0x8D, 0x8F,
// 0x90, 0x9D) map to the C1 control characters of the same number, as Windows' own converter does.
std::string DecodeWindows1252(std::string_view bytes);

// UTF-8 to Windows-1252; a character the code page lacks becomes '?', as a Windows ANSI call would.
// Invalid UTF-8 bytes are taken as Windows-1252 bytes already.
std::string EncodeWindows1252(std::string_view utf8);

// UTF-16LE (no BOM expected) to UTF-8; unpaired surrogates become U+FFFD, an odd last byte is dropped.
std::string DecodeUtf16Le(std::string_view bytes);

// UTF-8 to UTF-16LE without BOM.
std::string EncodeUtf16Le(std::string_view utf8);

enum class TextEncoding { kWindows1252, kUtf8, kUtf16Le };

// The encoding a byte-order mark announces (kWindows1252 when there is none) and the BOM's length.
struct DetectedEncoding {
  TextEncoding encoding;
  std::size_t bomLength;
};
DetectedEncoding DetectByteOrderMark(std::string_view bytes);

// Decodes a whole text file: a UTF-8 or UTF-16LE byte-order mark switches from Windows-1252.
// Invalid UTF-8 after a UTF-8 BOM is repaired byte by byte as Windows-1252.
std::string DecodeText(std::string_view bytes);

// True when `text` is well-formed UTF-8.
bool IsValidUtf8(std::string_view text);

}  // namespace sw::base
