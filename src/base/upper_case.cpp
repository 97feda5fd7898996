#include "base/upper_case.h"

namespace sw::base {

std::string UpperCase(std::string_view utf8) {
  std::string out(utf8);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto byte = static_cast<unsigned char>(out[i]);
    if (byte >= 'a' && byte <= 'z') {
      out[i] = static_cast<char>(byte - 32);
    } else if (byte == 0xC3 && i + 1 < out.size()) {
      // U+00E0..U+00FE are C3 A0..C3 BE; their capitals (less U+00F7 ÷) are 0x20 lower.
      const auto next = static_cast<unsigned char>(out[i + 1]);
      if (next >= 0xA0 && next <= 0xBE && next != 0xB7) out[i + 1] = static_cast<char>(next - 0x20);
      ++i;
    }
  }
  return out;
}

std::string RemoveAll(std::string_view text, std::string_view what) {
  if (what.empty()) return std::string(text);
  std::string out;
  std::size_t start = 0;
  for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what, start)) {
    out.append(text.substr(start, at - start));
    start = at + what.size();
  }
  out.append(text.substr(start));
  return out;
}

}  // namespace sw::base
