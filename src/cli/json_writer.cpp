#include "cli/json_writer.h"

#include <cstdio>

#include "base/text_codec.h"

namespace sw::cli {

std::string JsonString(std::string_view text) {
  // The table only ever holds UTF-8, but stay safe for anything that reaches here.
  const std::string valid = base::IsValidUtf8(text) ? std::string(text) : base::DecodeText(text);
  std::string out = "\"";
  for (char c : valid) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
          out += escaped;
        } else {
          out += c;
        }
    }
  }
  out += '"';
  return out;
}

}  // namespace sw::cli
