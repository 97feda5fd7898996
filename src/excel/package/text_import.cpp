#include "excel/package/text_import.h"

#include <algorithm>

#include "base/text_codec.h"
#include "excel/engine.h"

namespace sw::excel {

namespace {

constexpr int kUtf8CodePage = 65001;

std::string SheetNameFromFile(std::string_view stem) {
  std::string name;
  for (const char c : stem) name += std::string_view(":\\/?*[]").find(c) == std::string_view::npos ? c : '_';
  while (!name.empty() && name.front() == '\'') name.erase(0, 1);
  if (name.size() > 31) name.resize(31);
  while (!name.empty() && (name.back() == '\'' || (static_cast<unsigned char>(name.back()) & 0xC0) == 0xC0)) {
    name.pop_back();  // no apostrophe at the end, no character cut in half
  }
  return name.empty() ? "Blad1" : name;
}

}  // namespace

std::vector<std::vector<std::string>> SplitDelimitedText(std::string_view bytes,
                                                         const OpenTextOptions& options) {
  // A byte-order mark decides; without one the file is in the origin's code page.
  const bool utf8 = options.origin == kUtf8CodePage && base::IsValidUtf8(bytes) &&
                    base::DetectByteOrderMark(bytes).bomLength == 0;
  const std::string text = utf8 ? std::string(bytes) : base::DecodeText(bytes);
  const auto isDelimiter = [&](char c) {
    return (options.tab && c == '\t') || (options.semicolon && c == ';') || (options.comma && c == ',') ||
           (options.space && c == ' ') ||
           (options.other && options.otherChar != '\0' && c == options.otherChar);
  };
  const char quote = options.textQualifier == XlTextQualifier::xlTextQualifierDoubleQuote   ? '"'
                     : options.textQualifier == XlTextQualifier::xlTextQualifierSingleQuote ? '\''
                                                                                            : '\0';
  std::vector<std::vector<std::string>> rows;
  std::size_t i = 0;
  int line = 0;
  while (i < text.size() && rows.size() < static_cast<std::size_t>(kMaxRows)) {
    std::size_t end = i;
    while (end < text.size() && text[end] != '\r' && text[end] != '\n') ++end;
    const std::string_view current(text.data() + i, end - i);
    // CR LF, a lone CR and a lone LF each end one line; an empty line is a row of its own.
    i = end;
    if (i < text.size() && text[i] == '\r') ++i;
    if (i < text.size() && text[i] == '\n') ++i;
    if (++line < options.startRow) continue;
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t k = 0; k < current.size(); ++k) {
      const char c = current[k];
      if (quote != '\0' && c == quote) {
        if (quoted && k + 1 < current.size() && current[k + 1] == quote) {
          fields.back() += quote;
          ++k;
        } else if (quoted || fields.back().empty()) {
          quoted = !quoted;
        } else {
          fields.back() += c;
        }
      } else if (!quoted && isDelimiter(c)) {
        if (!(options.consecutiveDelimiter && k > 0 && isDelimiter(current[k - 1]))) fields.emplace_back();
      } else {
        fields.back() += c;
      }
    }
    if (fields.size() > static_cast<std::size_t>(kMaxColumns)) fields.resize(kMaxColumns);
    rows.push_back(std::move(fields));
  }
  return rows;
}

std::unique_ptr<WorkbookDocument> ImportText(std::string_view bytes, std::string_view stem,
                                             const OpenTextOptions& options) {
  auto rows = SplitDelimitedText(bytes, options);
  std::vector<bool> textColumns;
  std::vector<int> skipped;
  for (const auto& [column, type] : options.fieldInfo) {
    if (column < 1 || column > kMaxColumns) continue;
    if (textColumns.size() < static_cast<std::size_t>(column))
      textColumns.resize(static_cast<std::size_t>(column));
    textColumns[static_cast<std::size_t>(column - 1)] = type == XlColumnDataType::xlTextFormat;
    if (type == XlColumnDataType::xlSkipColumn) skipped.push_back(column);
  }
  std::sort(skipped.rbegin(), skipped.rend());
  for (auto& row : rows) {
    for (const int column : skipped) {
      if (static_cast<std::size_t>(column) <= row.size()) row.erase(row.begin() + (column - 1));
    }
  }
  for (const int column : skipped) {
    if (static_cast<std::size_t>(column) <= textColumns.size())
      textColumns.erase(textColumns.begin() + (column - 1));
  }
  return WorkbookDocument::FromTable(SheetNameFromFile(stem), rows, textColumns, options.rowsWritten);
}

}  // namespace sw::excel
