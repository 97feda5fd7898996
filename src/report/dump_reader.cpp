#include "report/dump_reader.h"

#include <algorithm>
#include <climits>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/file_io.h"
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

// The reading pass's row rules, fed one line at a time.
class RowBuilder {
 public:
  RowBuilder(ReportTable& table, bool ansi) : table_(table), ansi_(ansi) {}

  void Line(std::string_view line) {
    if (ansi_ && HasHighBytes(line)) {
      decoded_ = base::DecodeWindows1252(line);
      line = decoded_;
    }
    SplitFields(line, fields_);
    // Title and preamble lines widen the table too, although their fields are not shown.
    largestUpperBound_ = std::max(largestUpperBound_, fields_.size() - 1);

    const bool isTitle = line.starts_with('%');
    if (nextRow_ == 1 && !isTitle) {
      if (fields_[0].empty() && fields_.size() >= 2) {
        const std::string_view blank;
        const int blankRow = AddGridRow(table_, std::span(&blank, 1), nextRow_, kDefaultBack) - 1;
        PaintTitle(table_, blankRow);
        nextRow_ = AddGridRow(table_, fields_, blankRow + 1, kDefaultBack);
      }
    } else if (isTitle) {
      title_.clear();
      std::copy_if(line.begin(), line.end(), std::back_inserter(title_), [](char c) { return c != '%'; });
      const std::string_view cell = title_;
      const int titleRow = AddGridRow(table_, std::span(&cell, 1), nextRow_, kDefaultBack) - 1;
      PaintTitle(table_, titleRow);
      nextRow_ = titleRow + 1;
    } else {
      nextRow_ = AddGridRow(table_, fields_, nextRow_, kDefaultBack);
    }
  }

  void Finish() {
    table_.SetCols(static_cast<int>(std::min<std::size_t>(largestUpperBound_, INT_MAX - 1) + 1));
  }

 private:
  ReportTable& table_;
  bool ansi_;
  std::vector<std::string_view> fields_;
  std::string decoded_;
  std::string title_;
  std::size_t largestUpperBound_ = 0;
  int nextRow_ = 1;
};

int CheckedLineCount(std::size_t lines) {
  if (lines > static_cast<std::size_t>(INT_MAX - 2)) throw std::length_error("too many lines in dump");
  return static_cast<int>(lines);
}

// Every stored cell costs its length byte instead of its TAB, plus a byte per 128 text bytes at most.
void ReserveFor(ReportTable& table, const TextShape& shape) {
  table.Reserve(static_cast<int>(shape.lines) + 2,
                shape.decodedBytes + shape.lines + shape.decodedBytes / 128 + 16);
}

// The counting pass over a file read piece by piece; a CR LF may straddle two pieces.
class ShapeCounter {
 public:
  void Add(std::string_view chunk) {
    if (chunk.empty()) return;
    if (pendingCr_ && chunk.front() == '\n') chunk.remove_prefix(1);
    pendingCr_ = false;
    if (chunk.empty()) return;
    const bool endsInCr = chunk.back() == '\r';
    if (endsInCr) chunk.remove_suffix(1);
    TextShape part = Measure(chunk, true);
    // Measure counts an unterminated last piece as a line; here the next piece may go on with it.
    if (!chunk.empty() && chunk.back() != '\n' && chunk.back() != '\r') --part.lines;
    shape_.lines += part.lines + (endsInCr ? 1 : 0);
    shape_.decodedBytes += part.decodedBytes + (endsInCr ? 1 : 0);
    pendingCr_ = endsInCr;
    last_ = endsInCr ? '\r' : chunk.back();
    any_ = true;
  }
  TextShape Shape() const {
    TextShape shape = shape_;
    if (any_ && last_ != '\n' && last_ != '\r') ++shape.lines;
    return shape;
  }

 private:
  TextShape shape_;
  bool pendingCr_ = false;
  bool any_ = false;
  char last_ = '\n';
};

// Cuts pieces of a file into lines, keeping the part of a line that runs on into the next piece.
class LineJoiner {
 public:
  template <typename OnLine>
  void Add(std::string_view chunk, OnLine&& onLine) {
    if (skipLf_ && !chunk.empty() && chunk.front() == '\n') chunk.remove_prefix(1);
    skipLf_ = false;
    while (!chunk.empty()) {
      // find_first_of would look each byte up in the set of two; a plain scan is several times faster.
      const auto stop =
          std::find_if(chunk.begin(), chunk.end(), [](char c) { return c == '\r' || c == '\n'; });
      const std::size_t end =
          stop == chunk.end() ? std::string_view::npos : static_cast<std::size_t>(stop - chunk.begin());
      if (end == std::string_view::npos) {
        carry_.append(chunk);
        return;
      }
      std::string_view line = chunk.substr(0, end);
      if (!carry_.empty()) {
        carry_.append(line);
        line = carry_;
      }
      onLine(line);
      carry_.clear();
      std::size_t next = end + 1;
      if (chunk[end] == '\r') {
        if (next < chunk.size()) {
          if (chunk[next] == '\n') ++next;
        } else {
          skipLf_ = true;
        }
      }
      chunk.remove_prefix(next);
    }
  }
  template <typename OnLine>
  void Finish(OnLine&& onLine) {
    if (!carry_.empty()) onLine(std::string_view(carry_));
    carry_.clear();
  }

 private:
  std::string carry_;
  bool skipLf_ = false;
};

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
  const int lineCount = CheckedLineCount(shape.lines);
  ReserveFor(table, shape);

  ProgressScope progressScope(progress, lineCount);
  LineCursor cursor(text);
  RowBuilder rows(table, ansi);
  std::string_view line;
  for (int linesDone = 0; cursor.Next(line); ++linesDone) {
    rows.Line(line);
    progressScope.Step(linesDone);
  }
  rows.Finish();
  return DumpReadResult{lineCount};
}

std::optional<DumpReadResult> LoadDumpFile(ReportTable& table, const std::filesystem::path& path,
                                           LoadProgress* progress, std::size_t chunkBytes) {
  table.SetRows(1);
  chunkBytes = std::max<std::size_t>(chunkBytes, 4);
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string chunk(chunkBytes, '\0');
  const auto readChunk = [&]() -> std::string_view {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    return std::string_view(chunk.data(), static_cast<std::size_t>(file.gcount()));
  };

  // A byte-order mark asks for a conversion of the whole text: rare enough to read the file whole.
  const std::string_view head = readChunk();
  if (file.bad()) return std::nullopt;
  if (base::DetectByteOrderMark(head).encoding != base::TextEncoding::kWindows1252) {
    std::error_code error;
    const std::optional<std::string> bytes = base::ReadWholeFile(path, &error);
    if (!bytes) return std::nullopt;
    return LoadDumpText(table, *bytes, progress);
  }

  // The counting pass, then the reading pass, each through one piece of the file at a time, so that
  // a large dump is never held twice (once as read, once in the table).
  ShapeCounter counter;
  for (std::string_view piece = head; !piece.empty(); piece = readChunk()) counter.Add(piece);
  if (file.bad()) return std::nullopt;
  const TextShape shape = counter.Shape();
  const int lineCount = CheckedLineCount(shape.lines);
  ReserveFor(table, shape);

  file.clear();
  file.seekg(0);
  if (!file) return std::nullopt;
  ProgressScope progressScope(progress, lineCount);
  RowBuilder rows(table, true);
  LineJoiner joiner;
  int linesDone = 0;
  const auto onLine = [&](std::string_view line) {
    rows.Line(line);
    progressScope.Step(linesDone++);
  };
  for (std::string_view piece = readChunk(); !piece.empty(); piece = readChunk()) joiner.Add(piece, onLine);
  if (file.bad()) {
    table.SetRows(1);
    return std::nullopt;
  }
  joiner.Finish(onLine);
  rows.Finish();
  return DumpReadResult{lineCount};
}

}  // namespace sw::report
