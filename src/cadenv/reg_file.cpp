#include "cadenv/reg_file.h"

#include <cstdio>

#include "base/strings.h"
#include "base/text_codec.h"
#include "cadenv/reg_value_data.h"

namespace sw::cadenv {
namespace {

constexpr std::string_view kHeaderVersion5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kHeaderRegedit4 = "REGEDIT4";

bool IsSpace(char c) {
  return c == ' ' || c == '\t';
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::size_t SkipSpaces(std::string_view s, std::size_t i) {
  while (i < s.size() && IsSpace(s[i])) ++i;
  return i;
}

// True when only blanks or a ";" comment follow position i.
bool OnlyCommentFollows(std::string_view s, std::size_t i) {
  i = SkipSpaces(s, i);
  return i == s.size() || s[i] == ';';
}

bool StartsWithIgnoreCase(std::string_view s, std::string_view prefix) {
  return s.size() >= prefix.size() && base::EqualsIgnoreCase(s.substr(0, prefix.size()), prefix);
}

// Lines end at CR LF, LF or a lone CR.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  bool Next(std::string_view& line) {
    if (pos_ >= text_.size()) return false;
    std::size_t end = text_.find_first_of("\r\n", pos_);
    if (end == std::string_view::npos) end = text_.size();
    line = text_.substr(pos_, end - pos_);
    pos_ = end + 1;
    if (end < text_.size() && text_[end] == '\r' && pos_ < text_.size() && text_[pos_] == '\n') ++pos_;
    ++number_;
    return true;
  }
  std::size_t LineNumber() const { return number_; }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t number_ = 0;
};

class Parser {
 public:
  Parser(std::string_view text, RegTree& tree) : reader_(text), tree_(tree) {}

  RegParseResult Run() {
    if (!ReadHeader()) return result_;
    while (reader_.Next(line_)) {
      const std::size_t start = SkipSpaces(line_, 0);
      if (start == line_.size() || line_[start] == ';') continue;
      const char first = line_[start];
      bool ok = true;
      if (first == '[') {
        ok = ParseKeyLine(start);
      } else if (first == '"' || first == '@') {
        ok = ParseValueLine(start);
      } else if (!base::TrimBlanks(line_.substr(start)).empty()) {
        ok = Fail(RegParseStatus::kUnrecognisedLine, start, "Raden går inte att tolka.");
      }
      if (!ok) break;
    }
    return result_;
  }

 private:
  enum class Format { kVersion5, kRegedit4 };

  bool Fail(RegParseStatus status, std::size_t index, std::string description) {
    result_.status = status;
    result_.line = reader_.LineNumber();
    result_.column = 1;
    for (std::size_t i = 0; i < index && i < line_.size(); ++i) {
      if ((static_cast<unsigned char>(line_[i]) & 0xC0) != 0x80) ++result_.column;
    }
    result_.description = std::move(description);
    return false;
  }

  bool ReadHeader() {
    if (reader_.Next(line_)) {
      const auto header = base::TrimBlanks(line_);
      if (header == kHeaderVersion5) {
        format_ = Format::kVersion5;
        return true;
      }
      if (header == kHeaderRegedit4) {
        format_ = Format::kRegedit4;
        return true;
      }
    } else {
      line_ = {};
    }
    return Fail(RegParseStatus::kMissingHeader, 0,
                "Filen börjar inte med \"Windows Registry Editor Version 5.00\" eller \"REGEDIT4\".");
  }

  bool ParseKeyLine(std::size_t start) {
    const auto text = base::TrimBlanks(line_.substr(start));
    if (text.size() < 2 || text.back() != ']') {
      return Fail(RegParseStatus::kBadKeyLine, start + text.size(), "Nyckelraden saknar avslutande \"]\".");
    }
    auto inner = text.substr(1, text.size() - 2);
    const bool deletion = !inner.empty() && inner.front() == '-';
    if (deletion) inner.remove_prefix(1);
    const auto slash = inner.find('\\');
    const auto rootName = base::TrimBlanks(inner.substr(0, slash));
    const auto path = slash == std::string_view::npos ? std::string_view{} : inner.substr(slash + 1);
    const auto root = ParseRootName(rootName);
    if (!root) {
      return Fail(RegParseStatus::kUnknownRoot, start + 1,
                  "Okänd registerrot \"" + std::string(rootName) + "\".");
    }
    sawKey_ = true;
    if (deletion) {
      tree_.DeleteKey(*root, path);
      currentKey_ = nullptr;
      return true;
    }
    currentKey_ = tree_.CreateKey(*root, path);
    if (!currentKey_) return Fail(RegParseStatus::kKeyTooDeep, start + 1, "Nyckeln ligger för djupt.");
    return true;
  }

  // Reads a quoted text starting at s[i] == '"'. "\\" and "\"" are the escapes; any other backslash
  // stays as it is, so a hand-written "C:\Temp" keeps its backslash.
  static bool ReadQuoted(std::string_view s, std::size_t& i, std::string& out) {
    for (++i; i < s.size(); ++i) {
      const char c = s[i];
      if (c == '"') {
        ++i;
        return true;
      }
      if (c == '\\' && i + 1 < s.size() && (s[i + 1] == '\\' || s[i + 1] == '"')) ++i;
      out.push_back(s[i]);
    }
    return false;
  }

  bool ParseValueLine(std::size_t start) {
    if (!sawKey_) return Fail(RegParseStatus::kValueOutsideKey, start, "Värdet står före första nyckeln.");
    std::string name;
    std::size_t i = start;
    if (line_[i] == '@') {
      ++i;
    } else if (!ReadQuoted(line_, i, name)) {
      return Fail(RegParseStatus::kBadValueName, start, "Värdenamnet saknar avslutande citattecken.");
    }
    i = SkipSpaces(line_, i);
    if (i == line_.size() || line_[i] != '=') {
      return Fail(RegParseStatus::kBadValueName, i, "Likhetstecken saknas efter värdenamnet.");
    }
    i = SkipSpaces(line_, i + 1);
    const std::string_view data = line_.substr(i);

    ValueType type = ValueType::kString;
    std::string bytes;
    if (!data.empty() && data.front() == '"') {
      std::size_t end = i;
      if (!ReadQuoted(line_, end, bytes)) {
        return Fail(RegParseStatus::kBadValueData, i, "Texten saknar avslutande citattecken.");
      }
      if (!OnlyCommentFollows(line_, end))
        return Fail(RegParseStatus::kBadValueData, end, "Oväntad text efter värdet.");
    } else if (!data.empty() && data.front() == '-') {
      if (!OnlyCommentFollows(line_, i + 1)) {
        return Fail(RegParseStatus::kBadValueData, i + 1, "Oväntad text efter \"-\".");
      }
      if (currentKey_) currentKey_->DeleteValue(name);
      return true;
    } else if (StartsWithIgnoreCase(data, "dword:")) {
      if (!ParseDword(i + 6, bytes)) return false;
      type = ValueType::kDword;
    } else if (StartsWithIgnoreCase(data, "hex")) {
      if (!ParseHex(i + 3, type, bytes)) return false;
    } else {
      return Fail(RegParseStatus::kBadValueData, i, "Okänd datatyp.");
    }
    if (!currentKey_) return true;  // a value of a key being deleted
    currentKey_->SetValue(name, type, std::move(bytes));
    return true;
  }

  bool ParseDword(std::size_t i, std::string& bytes) {
    std::uint32_t number = 0;
    std::size_t digits = 0;
    for (; i < line_.size() && HexDigit(line_[i]) >= 0; ++i, ++digits) {
      number = number * 16 + static_cast<std::uint32_t>(HexDigit(line_[i]));
      if (digits == 8) return Fail(RegParseStatus::kBadValueData, i, "Ett dword har högst åtta siffror.");
    }
    if (digits == 0 || !OnlyCommentFollows(line_, i)) {
      return Fail(RegParseStatus::kBadValueData, i, "Ogiltigt dword-värde.");
    }
    for (int b = 0; b < 4; ++b) bytes.push_back(static_cast<char>((number >> (8 * b)) & 0xFF));
    return true;
  }

  bool ParseHex(std::size_t i, ValueType& type, std::string& bytes) {
    type = ValueType::kBinary;
    if (i < line_.size() && line_[i] == '(') {
      std::uint32_t number = 0;
      std::size_t digits = 0;
      for (++i; i < line_.size() && HexDigit(line_[i]) >= 0; ++i, ++digits) {
        number = number * 16 + static_cast<std::uint32_t>(HexDigit(line_[i]));
        if (digits == 8) break;
      }
      if (digits == 0 || digits > 8 || i == line_.size() || line_[i] != ')') {
        return Fail(RegParseStatus::kBadValueData, i, "Ogiltig typ i \"hex(...)\".");
      }
      ++i;
      type = static_cast<ValueType>(number);
    }
    if (i == line_.size() || line_[i] != ':')
      return Fail(RegParseStatus::kBadValueData, i, "Kolon saknas efter \"hex\".");
    if (!ParseHexList(i + 1, bytes)) return false;
    if (IsTextType(type)) {
      bytes = StripTerminators(
          type, format_ == Format::kVersion5 ? base::DecodeUtf16Le(bytes) : base::DecodeWindows1252(bytes));
    }
    return true;
  }

  // Comma-separated bytes; ",\" at a line's end continues the list on the next line (its leading blanks
  // skipped, comment lines between passed over). A blank line or the end of the file ends it.
  bool ParseHexList(std::size_t i, std::string& bytes) {
    bool expectByte = true;
    for (;;) {
      i = SkipSpaces(line_, i);
      if (i == line_.size() || line_[i] == ';') return true;
      const char c = line_[i];
      if (c == '\\') {
        if (!OnlyCommentFollows(line_, i + 1)) {
          return Fail(RegParseStatus::kBadValueData, i + 1, "Oväntad text efter \"\\\".");
        }
        if (!NextDataLine(i)) return true;
        expectByte = true;
        continue;
      }
      if (c == ',') {
        if (expectByte) return Fail(RegParseStatus::kBadValueData, i, "Byte saknas före kommatecknet.");
        expectByte = true;
        ++i;
        continue;
      }
      int value = HexDigit(c);
      if (value < 0 || !expectByte) {
        return Fail(RegParseStatus::kBadValueData, i, "Ogiltig hexadecimal byte.");
      }
      ++i;
      if (i < line_.size() && HexDigit(line_[i]) >= 0) value = value * 16 + HexDigit(line_[i++]);
      if (i < line_.size() && HexDigit(line_[i]) >= 0) {
        return Fail(RegParseStatus::kBadValueData, i, "Ogiltig hexadecimal byte.");
      }
      bytes.push_back(static_cast<char>(value));
      expectByte = false;
    }
  }

  bool NextDataLine(std::size_t& i) {
    for (;;) {
      if (!reader_.Next(line_)) {
        line_ = {};
        i = 0;
        return false;
      }
      i = SkipSpaces(line_, 0);
      if (i == line_.size() || line_[i] != ';') return true;
    }
  }

  LineReader reader_;
  std::string_view line_;
  RegTree& tree_;
  Format format_ = Format::kVersion5;
  RegKey* currentKey_ = nullptr;
  bool sawKey_ = false;
  RegParseResult result_;
};

// Names and string data in quotes: backslash and quote are escaped.
void AppendQuoted(std::string& out, std::string_view text) {
  out.push_back('"');
  for (const char c : text) {
    if (c == '\\' || c == '"') out.push_back('\\');
    out.push_back(c);
  }
  out.push_back('"');
}

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (const char c : text) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++count;
  }
  return count;
}

// regedit's layout of hex data: after every byte's comma the line is broken with ",\" once it has
// reached 77 characters; continuation lines start with two blanks.
void AppendHexData(std::string& out, std::size_t lineLength, std::string_view bytes) {
  constexpr std::size_t kMaxHexChars = 77;
  char digits[4];
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(bytes[i]));
    out += digits;
    if (i + 1 == bytes.size()) break;
    out.push_back(',');
    lineLength += 3;
    if (lineLength >= kMaxHexChars) {
      out += "\\\r\n  ";
      lineLength = 2;
    }
  }
}

bool NeedsHexForm(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != text.npos;
}

void AppendValue(std::string& out, const RegistryValue& value) {
  const std::size_t lineStart = out.size();
  if (value.name.empty()) {
    out.push_back('@');
  } else {
    AppendQuoted(out, value.name);
  }
  out.push_back('=');
  if (value.type == ValueType::kString && !NeedsHexForm(value.data)) {
    AppendQuoted(out, value.data);
  } else if (value.type == ValueType::kDword && value.data.size() == 4) {
    std::uint32_t number = 0;
    for (int b = 3; b >= 0; --b) number = (number << 8) | static_cast<unsigned char>(value.data[b]);
    char digits[16];
    std::snprintf(digits, sizeof digits, "dword:%08x", number);
    out += digits;
  } else {
    if (value.type == ValueType::kBinary) {
      out += "hex:";
    } else {
      char prefix[24];
      std::snprintf(prefix, sizeof prefix, "hex(%x):", static_cast<unsigned>(value.type));
      out += prefix;
    }
    const std::string bytes = IsTextType(value.type) ? Utf16DataFromText(value.type, value.data) : value.data;
    AppendHexData(out, CharacterCount(std::string_view(out).substr(lineStart)), bytes);
  }
  out += "\r\n";
}

void AppendKey(std::string& out, std::string& path, const RegKey& key, bool isHive) {
  if (!isHive || !key.Values().empty()) {
    out += '[';
    out += path;
    out += "]\r\n";
    for (const auto& value : key.Values()) AppendValue(out, value);
    out += "\r\n";
  }
  for (const auto& subkey : key.Subkeys()) {
    const std::size_t length = path.size();
    path += '\\';
    path += subkey.Name();
    AppendKey(out, path, subkey, false);
    path.resize(length);
  }
}

}  // namespace

RegParseResult ParseRegFile(std::string_view bytes, RegTree& tree) {
  const std::string text = base::DecodeText(bytes);
  return Parser(text, tree).Run();
}

std::string FormatRegText(const RegTree& tree) {
  std::string out(kHeaderVersion5);
  out += "\r\n\r\n";
  for (const RootKey root : {RootKey::kCurrentUser, RootKey::kLocalMachine}) {
    std::string path(RootName(root));
    AppendKey(out, path, tree.Hive(root), true);
  }
  return out;
}

std::string SerializeRegFile(const RegTree& tree) {
  return "\xFF\xFE" + base::EncodeUtf16Le(FormatRegText(tree));
}

}  // namespace sw::cadenv
