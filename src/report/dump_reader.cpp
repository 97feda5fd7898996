#include "report/dump_reader.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <span>
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
  std::size_t tabs = 0;
};

// The counting pass. A Windows-1252 byte from 0x80 grows to two UTF-8 bytes, in 0x80..0x9F to three.
// The counts are summed without branches in byte-wide counters, 255 bytes at a time, which the
// compiler turns into vector code: this pass reads the whole dump.
TextShape Measure(std::string_view text, bool ansi) {
  TextShape shape;
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t size = text.size();
  std::size_t lineFeeds = 0;
  std::size_t returns = 0;
  std::size_t pairs = 0;
  std::size_t high = 0;
  std::size_t control = 0;
  for (std::size_t block = 0; block < size; block += 255) {
    const std::size_t blockEnd = std::min(size, block + 255);
    std::uint8_t blockLineFeeds = 0;
    std::uint8_t blockReturns = 0;
    std::uint8_t blockTabs = 0;
    std::uint8_t blockHigh = 0;
    std::uint8_t blockControl = 0;
    for (std::size_t i = block; i < blockEnd; ++i) {
      const unsigned char byte = bytes[i];
      blockLineFeeds = static_cast<std::uint8_t>(blockLineFeeds + (byte == '\n'));
      blockReturns = static_cast<std::uint8_t>(blockReturns + (byte == '\r'));
      blockTabs = static_cast<std::uint8_t>(blockTabs + (byte == '\t'));
      blockHigh = static_cast<std::uint8_t>(blockHigh + (byte >= 0x80));
      blockControl = static_cast<std::uint8_t>(blockControl + (((byte >= 0x80) & (byte < 0xA0))));
    }
    std::uint8_t blockPairs = 0;
    for (std::size_t i = std::max<std::size_t>(block, 1); i < blockEnd; ++i)
      blockPairs = static_cast<std::uint8_t>(blockPairs + ((bytes[i - 1] == '\r') & (bytes[i] == '\n')));
    lineFeeds += blockLineFeeds;
    returns += blockReturns;
    shape.tabs += blockTabs;
    high += blockHigh;
    control += blockControl;
    pairs += blockPairs;
  }
  // A CR LF ends one line; a lone CR or a lone LF ends one too.
  shape.lines = lineFeeds + returns - pairs;
  // A last line without a line end counts; a line end at the very end opens no further line.
  if (size > 0 && text.back() != '\n' && text.back() != '\r') ++shape.lines;
  shape.decodedBytes = size + (ansi ? high + control : 0);
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
  // Eight bytes at a time: every dump line is checked, and nearly all are plain ASCII.
  constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
  std::size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + i, sizeof word);
    if (word & kHighBits) return true;
  }
  for (; i < text.size(); ++i) {
    if (static_cast<unsigned char>(text[i]) >= 0x80) return true;
  }
  return false;
}

// Eight bytes, the first in the lowest bits on any machine (one load where that is the native order).
std::uint64_t LoadLittleEndian(const char* bytes) {
  std::uint64_t word = 0;
  for (int k = 0; k < 8; ++k) word |= std::uint64_t{static_cast<unsigned char>(bytes[k])} << (8 * k);
  return word;
}

// Marks each TAB byte of an eight-byte word with its high bit, exactly (no borrow between bytes).
std::uint64_t TabBytes(std::uint64_t word) {
  constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7FULL;
  const std::uint64_t x = word ^ 0x0909090909090909ULL;
  return ~(((x & kLow7) + kLow7) | x | kLow7);
}

// Calls onField(begin, end) for each TAB-separated field of the line, in order; an empty line has one
// empty field. Eight bytes at a time: a dump line is mostly short fields, where a library search per
// field costs more than the field.
template <typename OnField>
void ForEachField(std::string_view line, OnField&& onField) {
  const char* data = line.data();
  const std::size_t size = line.size();
  std::size_t start = 0;
  std::size_t i = 0;
  for (; i + 8 <= size; i += 8) {
    const std::uint64_t word = LoadLittleEndian(data + i);
    for (std::uint64_t tabs = TabBytes(word); tabs != 0; tabs &= tabs - 1) {
      const std::size_t tab = i + static_cast<std::size_t>(std::countr_zero(tabs) / 8);
      onField(start, tab);
      start = tab + 1;
    }
  }
  for (; i < size; ++i) {
    if (data[i] == '\t') {
      onField(start, i);
      start = i + 1;
    }
  }
  onField(start, size);
}

void SplitFields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  ForEachField(line, [&](std::size_t begin, std::size_t end) {
    fields.emplace_back(line.data() + begin, end - begin);
  });
}

// A line's fields, each trimmed of spaces as AddGridRow trims them, back to back with their ends: the
// form the table stores a row in, built without a view per field.
class PackedFields {
 public:
  void Pack(std::string_view line) {
    // The table keeps 32-bit offsets; a line that long would not fit in it either.
    if (line.size() > std::numeric_limits<std::uint32_t>::max())
      throw std::length_error("dump line too long");
    // Trimmed fields without their TABs never need more room than the line.
    if (text_.size() < line.size()) text_.resize(std::max(line.size(), 2 * text_.size()));
    ends_.clear();
    char* out = text_.data();
    std::uint32_t used = 0;
    const char* data = line.data();
    ForEachField(line, [&](std::size_t begin, std::size_t end) {
      while (begin < end && data[begin] == ' ') ++begin;
      while (end > begin && data[end - 1] == ' ') --end;
      if (end > begin) std::memcpy(out + used, data + begin, end - begin);
      used += static_cast<std::uint32_t>(end - begin);
      ends_.push_back(used);
    });
    used_ = used;
  }
  std::string_view Text() const { return std::string_view(text_.data(), used_); }
  std::span<const std::uint32_t> Ends() const { return ends_; }

 private:
  std::vector<char> text_;
  std::vector<std::uint32_t> ends_;
  std::uint32_t used_ = 0;
};

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
    const bool isTitle = line.starts_with('%');
    if (nextRow_ > 1 && !isTitle) {
      AppendReportRow(line);
      return;
    }
    SplitFields(line, fields_);
    // Title and preamble lines widen the table too, although their fields are not shown.
    largestUpperBound_ = std::max(largestUpperBound_, fields_.size() - 1);

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

  // The bulk of a dump: a report row appended as AddGridRow appends it, which widens the table only
  // when the line's upper bound exceeds the column count, so a line one field wider than the table
  // loses its last field.
  void AppendReportRow(std::string_view line) {
    packed_.Pack(line);
    const std::size_t upperBound = packed_.Ends().size() - 1;
    largestUpperBound_ = std::max(largestUpperBound_, upperBound);
    if (upperBound > static_cast<std::size_t>(table_.Cols()))
      table_.SetCols(static_cast<int>(std::min<std::size_t>(upperBound, INT_MAX - 1) + 1));
    table_.AppendPackedRow(packed_.Text(), packed_.Ends());
    nextRow_ = table_.Rows();
  }

  void Finish() {
    table_.SetCols(static_cast<int>(std::min<std::size_t>(largestUpperBound_, INT_MAX - 1) + 1));
  }

 private:
  ReportTable& table_;
  bool ansi_;
  std::vector<std::string_view> fields_;
  PackedFields packed_;
  std::string decoded_;
  std::string title_;
  std::size_t largestUpperBound_ = 0;
  int nextRow_ = 1;
};

int CheckedLineCount(std::size_t lines) {
  if (lines > static_cast<std::size_t>(INT_MAX - 2)) throw std::length_error("too many lines in dump");
  return static_cast<int>(lines);
}

// A line stores at most one cell more than it has TABs.
void ReserveFor(ReportTable& table, const TextShape& shape) {
  table.Reserve(static_cast<int>(shape.lines) + 2, shape.decodedBytes + 16, shape.tabs + shape.lines + 1);
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
    shape_.tabs += part.tabs;
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
    const char* pos = chunk.data();
    const char* const end = pos + chunk.size();
    // memchr for LF and then for CR before it is several times faster than one scan for either; the
    // next LF is kept, so that a dump with CR line ends alone is not searched for LF at every line.
    const char* nextLf = nullptr;
    while (pos < end) {
      if (nextLf == nullptr || nextLf < pos) {
        const void* found = std::memchr(pos, '\n', static_cast<std::size_t>(end - pos));
        nextLf = found ? static_cast<const char*>(found) : end;
      }
      const void* cr = std::memchr(pos, '\r', static_cast<std::size_t>(nextLf - pos));
      const char* stop = cr ? static_cast<const char*>(cr) : nextLf;
      if (stop == end) {
        carry_.append(pos, static_cast<std::size_t>(end - pos));
        return;
      }
      std::string_view line(pos, static_cast<std::size_t>(stop - pos));
      if (!carry_.empty()) {
        carry_.append(line);
        line = carry_;
      }
      onLine(line);
      carry_.clear();
      pos = stop + 1;
      if (*stop == '\r') {
        if (pos < end) {
          if (*pos == '\n') ++pos;
        } else {
          skipLf_ = true;
        }
      }
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
  // Not zeroed: every byte used is read first.
  const auto chunk = std::make_unique_for_overwrite<char[]>(chunkBytes);
  const auto readChunk = [&]() -> std::string_view {
    file.read(chunk.get(), static_cast<std::streamsize>(chunkBytes));
    return std::string_view(chunk.get(), static_cast<std::size_t>(file.gcount()));
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
