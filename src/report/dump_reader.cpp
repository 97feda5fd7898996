#include "report/dump_reader.h"

#include <algorithm>
#include <climits>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text_codec.h"
#include "report/add_grid_row.h"

namespace sw::report {
namespace {

struct TextShape {
  std::size_t lines = 0;
  std::size_t decodedBytes = 0;  // at most this many bytes once decoded to UTF-8
};

// The counting pass. A Windows-1252 byte from 0x80 grows to two UTF-8 bytes, in 0x80..0x9F to three.
TextShape Measure(std::string_view text, bool ansi) {
  TextShape shape;
  std::size_t growth = 0;
  const std::size_t size = text.size();
  for (std::size_t i = 0; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte == '\n') {
      ++shape.lines;
    } else if (byte == '\r') {
      ++shape.lines;
      if (i + 1 < size && text[i + 1] == '\n') ++i;
    } else if (ansi && byte >= 0x80) {
      growth += byte < 0xA0 ? 2 : 1;
    }
  }
  // A last line without a line end counts; a line end at the very end opens no further line.
  if (size > 0 && text.back() != '\n' && text.back() != '\r') ++shape.lines;
  shape.decodedBytes = size + growth;
  return shape;
}

class LineCursor {
 public:
  explicit LineCursor(std::string_view text) : text_(text) {}

  bool Next(std::string_view& line) {
    const std::size_t size = text_.size();
    if (pos_ >= size) return false;
    std::size_t end = pos_;
    while (end < size && text_[end] != '\r' && text_[end] != '\n') ++end;
    line = text_.substr(pos_, end - pos_);
    if (end < size) end += (text_[end] == '\r' && end + 1 < size && text_[end + 1] == '\n') ? 2 : 1;
    pos_ = end;
    return true;
  }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
};

bool HasHighBytes(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// Splits at every TAB; an empty line gives one empty field.
void SplitFields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  std::size_t start = 0;
  for (std::size_t tab; (tab = line.find('\t', start)) != std::string_view::npos; start = tab + 1) {
    fields.push_back(line.substr(start, tab - start));
  }
  fields.push_back(line.substr(start));
}

// Busy state on for the reading pass, and off again however the pass ends.
class ProgressScope {
 public:
  ProgressScope(LoadProgress* progress, int lineCount)
      : progress_(progress), last_(lineCount - 1), stride_(std::max(1, lineCount / 100)) {
    if (progress_) progress_->Begin(lineCount);
  }
  ~ProgressScope() {
    if (progress_) progress_->End();
  }
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;

  void Step(int linesDone) {
    if (!progress_) return;
    if (linesDone - reported_ >= stride_ || linesDone == last_) {
      progress_->Step(linesDone);
      reported_ = linesDone;
    }
  }

 private:
  LoadProgress* progress_;
  int last_;
  int stride_;
  int reported_ = 0;
};

// Paints a title row green on the columns the table has now; columns added later stay uncoloured.
void PaintTitle(ReportTable& table, int row) {
  table.SetRowBackColour(row, 0, table.Cols() - 1, kTitleGreen);
}

}  // namespace

DumpReadResult LoadDumpText(ReportTable& table, std::string_view bytes, LoadProgress* progress) {
  table.SetRows(1);

  std::string converted;
  std::string_view text = bytes;
  bool ansi = false;
  const base::DetectedEncoding bom = base::DetectByteOrderMark(bytes);
  switch (bom.encoding) {
    case base::TextEncoding::kUtf16Le:
      converted = base::DecodeUtf16Le(bytes.substr(bom.bomLength));
      text = converted;
      break;
    case base::TextEncoding::kUtf8:
      text = bytes.substr(bom.bomLength);
      if (!base::IsValidUtf8(text)) {
        converted = base::DecodeText(bytes);
        text = converted;
      }
      break;
    case base::TextEncoding::kWindows1252:
      ansi = true;
      break;
  }

  const TextShape shape = Measure(text, ansi);
  if (shape.lines > static_cast<std::size_t>(INT_MAX - 2)) throw std::length_error("too many lines in dump");
  const int lineCount = static_cast<int>(shape.lines);
  // Every stored cell costs its length byte instead of its TAB, plus a byte per 128 text bytes at most.
  table.Reserve(lineCount + 2, shape.decodedBytes + shape.lines + shape.decodedBytes / 128 + 16);

  ProgressScope progressScope(progress, lineCount);
  LineCursor cursor(text);
  std::vector<std::string_view> fields;
  std::string decoded;
  std::string title;
  std::size_t largestUpperBound = 0;
  int nextRow = 1;
  std::string_view line;
  for (int linesDone = 0; cursor.Next(line); ++linesDone) {
    if (ansi && HasHighBytes(line)) {
      decoded = base::DecodeWindows1252(line);
      line = decoded;
    }
    SplitFields(line, fields);
    // Title and preamble lines widen the table too, although their fields are not shown.
    largestUpperBound = std::max(largestUpperBound, fields.size() - 1);

    const bool isTitle = line.starts_with('%');
    if (nextRow == 1 && !isTitle) {
      if (fields[0].empty() && fields.size() >= 2) {
        const std::string_view blank;
        const int blankRow = AddGridRow(table, std::span(&blank, 1), nextRow, kDefaultBack) - 1;
        PaintTitle(table, blankRow);
        nextRow = AddGridRow(table, fields, blankRow + 1, kDefaultBack);
      }
    } else if (isTitle) {
      title.clear();
      std::copy_if(line.begin(), line.end(), std::back_inserter(title), [](char c) { return c != '%'; });
      const std::string_view cell = title;
      const int titleRow = AddGridRow(table, std::span(&cell, 1), nextRow, kDefaultBack) - 1;
      PaintTitle(table, titleRow);
      nextRow = titleRow + 1;
    } else {
      nextRow = AddGridRow(table, fields, nextRow, kDefaultBack);
    }
    progressScope.Step(linesDone);
  }
  table.SetCols(static_cast<int>(std::min<std::size_t>(largestUpperBound, INT_MAX - 1) + 1));
  return DumpReadResult{lineCount};
}

}  // namespace sw::report
