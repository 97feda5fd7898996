#include "report/report_table.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace sw::report {
namespace {

// A row's cells are stored back to back in one buffer, each as its byte length (7 bits a byte, low
// bits first, high bit set on all but the last byte) followed by its text. Trailing empty cells are
// not stored. One buffer for the whole table spares a 200,000-row dump a million small allocations.
void AppendCell(std::string& out, std::string_view text) {
  std::size_t length = text.size();
  while (length >= 0x80) {
    out.push_back(static_cast<char>((length & 0x7F) | 0x80));
    length >>= 7;
  }
  out.push_back(static_cast<char>(length));
  out.append(text);
}

std::size_t CountWithoutTrailingEmpties(std::span<const std::string_view> cells) {
  std::size_t count = cells.size();
  while (count > 0 && cells[count - 1].empty()) --count;
  return count;
}

std::string Encode(std::span<const std::string_view> cells) {
  const std::size_t count = CountWithoutTrailingEmpties(cells);
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < count; ++i) bytes += cells[i].size() + 2;
  std::string out;
  out.reserve(bytes);
  for (std::size_t i = 0; i < count; ++i) AppendCell(out, cells[i]);
  return out;
}

class CellCursor {
 public:
  explicit CellCursor(std::string_view payload) : payload_(payload) {}

  // The next cell's text; false after the last stored cell.
  bool Next(std::string_view& cell) {
    if (pos_ >= payload_.size()) return false;
    std::size_t length = 0;
    for (int shift = 0; pos_ < payload_.size(); shift += 7) {
      const auto byte = static_cast<unsigned char>(payload_[pos_++]);
      length |= static_cast<std::size_t>(byte & 0x7F) << shift;
      if ((byte & 0x80) == 0) break;
    }
    cell = payload_.substr(pos_, length);
    pos_ += cell.size();
    return true;
  }
  std::size_t Position() const { return pos_; }

 private:
  std::string_view payload_;
  std::size_t pos_ = 0;
};

bool PointsInto(const std::string& buffer, std::string_view text) {
  if (text.empty()) return false;
  const std::less_equal<const char*> lessEqual;
  const std::less<const char*> less;
  return lessEqual(buffer.data(), text.data()) && less(text.data(), buffer.data() + buffer.size());
}

// Below this much unused text a compaction is not worth its copy.
constexpr std::size_t kCompactionThreshold = std::size_t{1} << 20;

}  // namespace

ReportTable::Row::Row(const Row& other)
    : offset(other.offset),
      size(other.size),
      back(other.back),
      backSpan(other.backSpan),
      extras(other.extras ? std::make_unique<std::vector<CellExtra>>(*other.extras) : nullptr) {}

ReportTable::Row& ReportTable::Row::operator=(const Row& other) {
  if (this != &other) *this = Row(other);
  return *this;
}

ReportTable::ReportTable() : rows_(1) {}
ReportTable::ReportTable(const ReportTable& other) = default;
ReportTable& ReportTable::operator=(const ReportTable& other) = default;
ReportTable::~ReportTable() = default;

int ReportTable::Rows() const {
  return static_cast<int>(rows_.size());
}
int ReportTable::Cols() const {
  return cols_;
}

void ReportTable::SetRows(int rows) {
  rows = std::max(rows, 1);
  if (rows < Rows()) {
    for (auto it = rows_.begin() + rows; it != rows_.end(); ++it) Discard(*it);
    rows_.erase(rows_.begin() + rows, rows_.end());
    CompactIfWasteful();
  } else {
    rows_.resize(static_cast<std::size_t>(rows));
  }
}

void ReportTable::SetCols(int cols) {
  cols = std::max(cols, 1);
  if (cols < cols_) {
    for (Row& row : rows_) {
      CellCursor cursor(Payload(row));
      std::string_view cell;
      for (int i = 0; i < cols && cursor.Next(cell); ++i) {
      }
      const auto kept = static_cast<std::uint32_t>(cursor.Position());
      garbage_ += row.size - kept;
      row.size = kept;
      row.backSpan = std::min(row.backSpan, cols);
      if (row.extras) {
        std::erase_if(*row.extras, [cols](const CellExtra& extra) { return extra.col >= cols; });
        DropEmptyExtras(row);
      }
    }
  }
  cols_ = cols;
  CompactIfWasteful();
}

std::string_view ReportTable::Payload(const Row& row) const {
  return std::string_view(text_).substr(row.offset, row.size);
}

std::vector<std::string_view> ReportTable::CellsOf(const Row& row) const {
  std::vector<std::string_view> cells;
  CellCursor cursor(Payload(row));
  std::string_view cell;
  while (cursor.Next(cell)) cells.push_back(cell);
  return cells;
}

std::string_view ReportTable::Text(int row, int col) const {
  if (!ValidCell(row, col)) return {};
  CellCursor cursor(Payload(rows_[row]));
  std::string_view cell;
  for (int i = 0; i <= col; ++i) {
    if (!cursor.Next(cell)) return {};
  }
  return cell;
}

void ReportTable::SetText(int row, int col, std::string_view text) {
  if (!ValidCell(row, col)) return;
  Row& target = rows_[row];
  std::vector<std::string_view> cells = CellsOf(target);
  if (static_cast<int>(cells.size()) <= col) cells.resize(static_cast<std::size_t>(col) + 1);
  cells[col] = text;
  StorePayload(target, Encode(cells));
  CompactIfWasteful();
}

void ReportTable::SetRowTexts(int row, std::span<const std::string_view> texts) {
  if (!ValidRow(row)) return;
  texts = texts.first(std::min(texts.size(), static_cast<std::size_t>(cols_)));
  Row& target = rows_[row];
  const bool aliases = std::any_of(texts.begin(), texts.end(),
                                   [this](std::string_view text) { return PointsInto(text_, text); });
  if (target.size == 0 && !aliases) {
    // The common case of a load: a fresh row, written straight to the end of the buffer.
    const std::size_t count = CountWithoutTrailingEmpties(texts);
    const std::size_t start = text_.size();
    for (std::size_t i = 0; i < count; ++i) AppendCell(text_, texts[i]);
    if (text_.size() - start > std::numeric_limits<std::uint32_t>::max()) {
      text_.resize(start);
      throw std::length_error("report row too long");
    }
    target.offset = start;
    target.size = static_cast<std::uint32_t>(text_.size() - start);
    return;
  }
  std::vector<std::string_view> cells = CellsOf(target);
  if (cells.size() < texts.size()) cells.resize(texts.size());
  std::copy(texts.begin(), texts.end(), cells.begin());
  StorePayload(target, Encode(cells));
  CompactIfWasteful();
}

void ReportTable::StorePayload(Row& row, std::string_view encoded) {
  if (encoded.size() <= row.size) {
    std::copy(encoded.begin(), encoded.end(), text_.begin() + static_cast<std::ptrdiff_t>(row.offset));
    garbage_ += row.size - encoded.size();
    row.size = static_cast<std::uint32_t>(encoded.size());
    return;
  }
  if (encoded.size() > std::numeric_limits<std::uint32_t>::max())
    throw std::length_error("report row too long");
  garbage_ += row.size;
  row.offset = text_.size();
  row.size = static_cast<std::uint32_t>(encoded.size());
  text_.append(encoded);
}

void ReportTable::CompactIfWasteful() {
  if (garbage_ < kCompactionThreshold || garbage_ < text_.size() / 2) return;
  std::string compacted;
  compacted.reserve(text_.size() - garbage_);
  for (Row& row : rows_) {
    const std::string_view payload = Payload(row);
    row.offset = compacted.size();
    compacted.append(payload);
  }
  text_.swap(compacted);
  garbage_ = 0;
}

std::vector<std::string_view> ReportTable::RowTexts(int row) const {
  if (!ValidRow(row)) return {};
  std::vector<std::string_view> cells = CellsOf(rows_[row]);
  cells.resize(CountWithoutTrailingEmpties(cells));
  return cells;
}

bool ReportTable::IsRowBlank(int row) const {
  if (!ValidRow(row)) return true;
  CellCursor cursor(Payload(rows_[row]));
  std::string_view cell;
  while (cursor.Next(cell)) {
    if (cell.find_first_not_of(' ') != std::string_view::npos) return false;
  }
  return true;
}

const ReportTable::CellExtra* ReportTable::FindExtra(const Row& row, int col) const {
  if (!row.extras) return nullptr;
  for (const CellExtra& extra : *row.extras) {
    if (extra.col == col) return &extra;
  }
  return nullptr;
}

ReportTable::CellExtra& ReportTable::EditExtra(Row& row, int col) {
  if (!row.extras) row.extras = std::make_unique<std::vector<CellExtra>>();
  auto& extras = *row.extras;
  auto it = std::lower_bound(extras.begin(), extras.end(), col,
                             [](const CellExtra& extra, int c) { return extra.col < c; });
  if (it == extras.end() || it->col != col) {
    CellExtra fresh;
    fresh.col = col;
    it = extras.insert(it, fresh);
  }
  return *it;
}

void ReportTable::DropEmptyExtras(Row& row) {
  if (!row.extras) return;
  std::erase_if(*row.extras, [](const CellExtra& extra) {
    return !extra.hasColour && extra.picture == CellPicture::kNone && extra.checked < 0;
  });
  if (row.extras->empty()) row.extras.reset();
}

Colour ReportTable::BackColour(int row, int col) const {
  if (!ValidCell(row, col)) return kDefaultBack;
  const Row& target = rows_[row];
  if (const CellExtra* extra = FindExtra(target, col); extra && extra->hasColour) return extra->colour;
  return col < target.backSpan ? target.back : kDefaultBack;
}

void ReportTable::SetBackColour(int row, int col, Colour colour) {
  SetRowBackColour(row, col, col, colour);
}

void ReportTable::SetRowBackColour(int row, int firstCol, int lastCol, Colour colour) {
  if (!ValidRow(row)) return;
  firstCol = std::max(firstCol, 0);
  lastCol = std::min(lastCol, cols_ - 1);
  if (firstCol > lastCol) return;
  Row& target = rows_[row];
  if (firstCol == 0 && lastCol + 1 >= target.backSpan) {
    // The whole coloured run is repainted: one colour for the row, no exceptions up to lastCol.
    target.back = colour;
    target.backSpan = lastCol + 1;
    if (target.extras) {
      for (CellExtra& extra : *target.extras) {
        if (extra.col <= lastCol) extra.hasColour = false;
      }
      DropEmptyExtras(target);
    }
    return;
  }
  for (int col = firstCol; col <= lastCol; ++col) {
    const Colour runColour = col < target.backSpan ? target.back : kDefaultBack;
    if (colour != runColour) {
      CellExtra& extra = EditExtra(target, col);
      extra.colour = colour;
      extra.hasColour = true;
    } else if (target.extras) {
      for (CellExtra& extra : *target.extras) {
        if (extra.col == col) extra.hasColour = false;
      }
    }
  }
  DropEmptyExtras(target);
}

void ReportTable::AssignColours(Row& row, const std::vector<Colour>& colours) {
  if (row.extras) {
    for (CellExtra& extra : *row.extras) extra.hasColour = false;
  }
  row.back = colours.empty() ? kDefaultBack : colours[0];
  row.backSpan = 0;
  while (row.backSpan < static_cast<int>(colours.size()) && colours[row.backSpan] == row.back) ++row.backSpan;
  for (int col = row.backSpan; col < static_cast<int>(colours.size()); ++col) {
    if (colours[col] != kDefaultBack) {
      CellExtra& extra = EditExtra(row, col);
      extra.colour = colours[col];
      extra.hasColour = true;
    }
  }
  DropEmptyExtras(row);
}

CellPicture ReportTable::Picture(int row, int col) const {
  if (!ValidCell(row, col)) return CellPicture::kNone;
  const CellExtra* extra = FindExtra(rows_[row], col);
  return extra ? extra->picture : CellPicture::kNone;
}

void ReportTable::SetPicture(int row, int col, CellPicture picture) {
  if (!ValidCell(row, col)) return;
  Row& target = rows_[row];
  if (picture == CellPicture::kNone && !FindExtra(target, col)) return;
  EditExtra(target, col).picture = picture;
  DropEmptyExtras(target);
}

std::optional<bool> ReportTable::Checked(int row, int col) const {
  if (!ValidCell(row, col)) return std::nullopt;
  const CellExtra* extra = FindExtra(rows_[row], col);
  if (!extra || extra->checked < 0) return std::nullopt;
  return extra->checked != 0;
}

void ReportTable::SetChecked(int row, int col, bool checked) {
  if (!ValidCell(row, col)) return;
  EditExtra(rows_[row], col).checked = checked ? 1 : 0;
}

void ReportTable::InsertRow(int row) {
  if (row < 1 || row > Rows()) return;
  rows_.insert(rows_.begin() + row, Row{});
}

void ReportTable::RemoveRow(int row) {
  if (row < 1 || row >= Rows()) return;
  Discard(rows_[row]);
  rows_.erase(rows_.begin() + row);
  CompactIfWasteful();
}

void ReportTable::RemoveRowsIf(const std::function<bool(int row)>& shouldRemove) {
  std::vector<char> remove(rows_.size(), 0);
  for (int row = Rows() - 1; row >= 1; --row) remove[row] = shouldRemove(row) ? 1 : 0;
  std::size_t kept = 1;
  for (std::size_t row = 1; row < rows_.size(); ++row) {
    if (remove[row]) {
      Discard(rows_[row]);
    } else {
      if (kept != row) rows_[kept] = std::move(rows_[row]);
      ++kept;
    }
  }
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(kept), rows_.end());
  CompactIfWasteful();
}

void ReportTable::MoveColumn(int from, int to) {
  if (from < 0 || from >= cols_ || to < 0 || to >= cols_ || from == to) return;
  const auto newPosition = [from, to](int col) {
    if (col == from) return to;
    if (from < to && col > from && col <= to) return col - 1;
    if (to < from && col >= to && col < from) return col + 1;
    return col;
  };
  const auto rotate = [from, to](auto& values) {
    if (from < to) {
      std::rotate(values.begin() + from, values.begin() + from + 1, values.begin() + to + 1);
    } else {
      std::rotate(values.begin() + to, values.begin() + from, values.begin() + from + 1);
    }
  };
  for (int r = 0; r < Rows(); ++r) {
    Row& row = rows_[r];
    std::vector<Colour> colours(static_cast<std::size_t>(cols_));
    for (int col = 0; col < cols_; ++col) colours[col] = BackColour(r, col);
    rotate(colours);

    std::vector<std::string_view> cells = CellsOf(row);
    cells.resize(static_cast<std::size_t>(cols_));
    rotate(cells);
    StorePayload(row, Encode(cells));

    if (row.extras) {
      for (CellExtra& extra : *row.extras) extra.col = newPosition(extra.col);
      std::sort(row.extras->begin(), row.extras->end(),
                [](const CellExtra& a, const CellExtra& b) { return a.col < b.col; });
    }
    AssignColours(row, colours);
  }
  CompactIfWasteful();
}

RowClass ReportTable::ClassOf(int row) const {
  const Colour colour = BackColour(row, 0);
  if (colour == kTitleGreen) return Text(row, 0).empty() ? RowClass::kManualBreak : RowClass::kPlacementHead;
  if (colour == kPageBreakYellow) return RowClass::kPageBreakMark;
  return RowClass::kOrdinary;
}

void ReportTable::Reserve(int rows, std::size_t textBytes) {
  if (rows > Rows()) rows_.reserve(static_cast<std::size_t>(rows));
  text_.reserve(text_.size() + textBytes);
}

}  // namespace sw::report
