#include "report/report_table.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace sw::report {
namespace {

std::size_t CountWithoutTrailingEmpties(std::span<const std::string_view> cells) {
  std::size_t count = cells.size();
  while (count > 0 && cells[count - 1].empty()) --count;
  return count;
}

bool PointsInto(std::string_view buffer, std::string_view text) {
  if (text.empty()) return false;
  const std::less_equal<const char*> lessEqual;
  const std::less<const char*> less;
  return lessEqual(buffer.data(), text.data()) && less(text.data(), buffer.data() + buffer.size());
}

// Offsets and indexes are 32 bits to keep rows small; a dump that needs more would not fit in memory.
void CheckOffset(std::size_t value) {
  if (value > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("report table too large");
}

// Below this much unused storage a compaction is not worth its copy.
constexpr std::size_t kCompactionThreshold = std::size_t{1} << 20;

}  // namespace

ReportTable::ReportTable() : rows_(1) {}

int ReportTable::Rows() const {
  return static_cast<int>(rows_.size());
}
int ReportTable::Cols() const {
  return cols_;
}

std::size_t ReportTable::CellEnd(const Row& row, std::uint32_t cell) const {
  const std::uint8_t* ends = ends_.data() + row.ends;
  switch (row.cells >> kWidthShift) {
    case 0:
      return ends[cell];
    case 1: {
      std::uint16_t end;
      std::memcpy(&end, ends + std::size_t{2} * cell, sizeof end);
      return end;
    }
    default: {
      std::uint32_t end;
      std::memcpy(&end, ends + std::size_t{4} * cell, sizeof end);
      return end;
    }
  }
}

std::string_view ReportTable::CellText(const Row& row, std::uint32_t cell) const {
  const std::size_t begin = cell == 0 ? 0 : CellEnd(row, cell - 1);
  return std::string_view(text_.data() + row.text + begin, CellEnd(row, cell) - begin);
}

void ReportTable::Discard(Row& row) {
  textGarbage_ += RowTextSize(row);
  endsGarbage_ += EndBytes(row);
  row.cells = 0;
  if (row.style) {
    styles_[row.style - 1] = Style{};
    freeStyles_.push_back(row.style - 1);
    row.style = 0;
  }
}

ReportTable::Style& ReportTable::EditStyle(Row& row) {
  if (!row.style) {
    if (freeStyles_.empty()) {
      CheckOffset(styles_.size() + 1);
      styles_.emplace_back();
      row.style = static_cast<std::uint32_t>(styles_.size());
    } else {
      row.style = freeStyles_.back() + 1;
      freeStyles_.pop_back();
    }
  }
  return styles_[row.style - 1];
}

void ReportTable::ReleaseIfPlain(Row& row) {
  if (!row.style) return;
  Style& style = styles_[row.style - 1];
  if (style.back != kDefaultBack || !style.extras.empty()) return;
  style = Style{};
  freeStyles_.push_back(row.style - 1);
  row.style = 0;
}

void ReportTable::SetRows(int rows) {
  rows = std::max(rows, 1);
  if (rows < Rows()) {
    for (auto it = rows_.begin() + rows; it != rows_.end(); ++it) Discard(*it);
    rows_.erase(rows_.begin() + rows, rows_.end());
    if (rows == 1 && rows_[0].cells == 0 && !rows_[0].style) {
      // Back to the heading row alone: a new load starts from empty buffers, keeping their room.
      text_.clear();
      ends_.clear();
      styles_.clear();
      freeStyles_.clear();
      textGarbage_ = endsGarbage_ = 0;
    }
    CompactIfWasteful();
  } else {
    rows_.resize(static_cast<std::size_t>(rows));
  }
}

void ReportTable::SetCols(int cols) {
  cols = std::max(cols, 1);
  if (cols < cols_) {
    for (Row& row : rows_) {
      const std::uint32_t count = CellCount(row);
      if (count > static_cast<std::uint32_t>(cols)) {
        const std::size_t textBefore = RowTextSize(row);
        const std::size_t endsBefore = EndBytes(row);
        row.cells = static_cast<std::uint32_t>(cols) | (row.cells & ~kCountMask);
        textGarbage_ += textBefore - RowTextSize(row);
        endsGarbage_ += endsBefore - EndBytes(row);
      }
      if (row.style) {
        Style& style = styles_[row.style - 1];
        style.backSpan = std::min(style.backSpan, cols);
        std::erase_if(style.extras, [cols](const CellExtra& extra) { return extra.col >= cols; });
        DropEmptyExtras(row);
      }
    }
  }
  cols_ = cols;
  CompactIfWasteful();
}

std::vector<std::string_view> ReportTable::CellsOf(const Row& row) const {
  std::vector<std::string_view> cells;
  const std::uint32_t count = CellCount(row);
  cells.reserve(count);
  for (std::uint32_t cell = 0; cell < count; ++cell) cells.push_back(CellText(row, cell));
  return cells;
}

std::string_view ReportTable::Text(int row, int col) const {
  if (!ValidCell(row, col)) return {};
  const Row& target = rows_[row];
  if (static_cast<std::uint32_t>(col) >= CellCount(target)) return {};
  return CellText(target, static_cast<std::uint32_t>(col));
}

void ReportTable::SetText(int row, int col, std::string_view text) {
  if (!ValidCell(row, col)) return;
  Row& target = rows_[row];
  std::vector<std::string_view> cells = CellsOf(target);
  if (static_cast<int>(cells.size()) <= col) cells.resize(static_cast<std::size_t>(col) + 1);
  cells[col] = text;
  StoreRow(target, cells);
  CompactIfWasteful();
}

void ReportTable::SetRowTexts(int row, std::span<const std::string_view> texts) {
  if (!ValidRow(row)) return;
  texts = texts.first(std::min(texts.size(), static_cast<std::size_t>(cols_)));
  Row& target = rows_[row];
  if (target.cells == 0) {
    // The common case of a load: a fresh row, its cells simply stored.
    StoreRow(target, texts);
    return;
  }
  std::vector<std::string_view> cells = CellsOf(target);
  if (cells.size() < texts.size()) cells.resize(texts.size());
  std::copy(texts.begin(), texts.end(), cells.begin());
  StoreRow(target, cells);
  CompactIfWasteful();
}

void ReportTable::StoreRow(Row& row, std::span<const std::string_view> cells) {
  cells = cells.first(CountWithoutTrailingEmpties(cells));
  if (cells.size() > kCountMask) throw std::length_error("report row too wide");
  std::size_t bytes = 0;
  bool aliases = false;
  for (const std::string_view cell : cells) {
    bytes += cell.size();
    aliases = aliases || PointsInto(text_, cell);
  }
  std::vector<std::string_view> copies;
  if (aliases) {
    // The new texts are (partly) the table's own: copy them out before the buffer is written.
    scratch_.clear();
    for (const std::string_view cell : cells) scratch_.append(cell);
    copies.reserve(cells.size());
    std::size_t at = 0;
    for (const std::string_view cell : cells) {
      copies.emplace_back(scratch_.data() + at, cell.size());
      at += cell.size();
    }
    cells = copies;
  }
  CheckOffset(bytes);
  const int widthCode = WidthCode(bytes);
  const std::size_t endBytes = cells.size() << widthCode;
  const std::size_t oldText = RowTextSize(row);
  const std::size_t oldEnds = EndBytes(row);
  if (CellCount(row) != 0 && bytes <= oldText && endBytes <= oldEnds) {
    textGarbage_ += oldText - bytes;
    endsGarbage_ += oldEnds - endBytes;
    WriteRow(row, row.text, row.ends, cells, widthCode);
    return;
  }
  textGarbage_ += oldText;
  endsGarbage_ += oldEnds;
  CheckOffset(text_.size() + bytes);
  CheckOffset(ends_.size() + endBytes);
  const std::size_t textAt = text_.size();
  const std::size_t endsAt = ends_.size();
  text_.resize(textAt + bytes);
  ends_.resize(endsAt + endBytes);
  WriteRow(row, textAt, endsAt, cells, widthCode);
}

void ReportTable::WriteRow(Row& row, std::size_t textAt, std::size_t endsAt,
                           std::span<const std::string_view> cells, int widthCode) {
  char* text = text_.data() + textAt;
  std::uint8_t* ends = ends_.data() + endsAt;
  std::uint32_t end = 0;
  for (const std::string_view cell : cells) {
    if (!cell.empty()) std::memcpy(text + end, cell.data(), cell.size());
    end += static_cast<std::uint32_t>(cell.size());
    if (widthCode == 0) {
      *ends++ = static_cast<std::uint8_t>(end);
    } else if (widthCode == 1) {
      const auto narrow = static_cast<std::uint16_t>(end);
      std::memcpy(ends, &narrow, sizeof narrow);
      ends += sizeof narrow;
    } else {
      std::memcpy(ends, &end, sizeof end);
      ends += sizeof end;
    }
  }
  row.text = static_cast<std::uint32_t>(textAt);
  row.ends = static_cast<std::uint32_t>(endsAt);
  row.cells =
      static_cast<std::uint32_t>(cells.size()) | (static_cast<std::uint32_t>(widthCode) << kWidthShift);
}

void ReportTable::AppendPackedRow(std::string_view text, std::span<const std::uint32_t> ends) {
  if (rows_.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max()))
    throw std::length_error("report table too large");
  std::size_t count = std::min(ends.size(), static_cast<std::size_t>(cols_));
  // Trailing empty cells are not stored: an empty cell ends where the one before it ends.
  while (count > 0 && ends[count - 1] == (count > 1 ? ends[count - 2] : 0)) --count;
  if (count > kCountMask) throw std::length_error("report row too wide");
  const std::size_t bytes = count ? ends[count - 1] : 0;
  if (bytes > text.size()) throw std::invalid_argument("packed row ends beyond its text");
  const int widthCode = WidthCode(bytes);
  const std::size_t textAt = text_.size();
  const std::size_t endsAt = ends_.size();
  CheckOffset(textAt + bytes);
  CheckOffset(endsAt + (count << widthCode));
  if (bytes) text_.append(text.data(), bytes);
  ends_.resize(endsAt + (count << widthCode));
  std::uint8_t* out = ends_.data() + endsAt;
  for (std::size_t cell = 0; cell < count; ++cell) {
    if (widthCode == 0) {
      out[cell] = static_cast<std::uint8_t>(ends[cell]);
    } else if (widthCode == 1) {
      const auto narrow = static_cast<std::uint16_t>(ends[cell]);
      std::memcpy(out + 2 * cell, &narrow, sizeof narrow);
    } else {
      std::memcpy(out + 4 * cell, &ends[cell], sizeof ends[cell]);
    }
  }
  Row& row = rows_.emplace_back();
  row.text = static_cast<std::uint32_t>(textAt);
  row.ends = static_cast<std::uint32_t>(endsAt);
  row.cells = static_cast<std::uint32_t>(count) | (static_cast<std::uint32_t>(widthCode) << kWidthShift);
}

void ReportTable::CompactIfWasteful() {
  const bool textWasteful = textGarbage_ >= kCompactionThreshold && textGarbage_ >= text_.size() / 2;
  const bool endsWasteful = endsGarbage_ >= kCompactionThreshold && endsGarbage_ >= ends_.size() / 2;
  if (!textWasteful && !endsWasteful) return;
  TextStore text;
  EndStore ends;
  text.reserve(text_.size() - textGarbage_);
  ends.reserve(ends_.size() - endsGarbage_);
  for (Row& row : rows_) {
    const std::size_t textAt = text.size();
    const std::size_t endsAt = ends.size();
    text.append(text_, row.text, RowTextSize(row));
    ends.insert(ends.end(), ends_.begin() + row.ends, ends_.begin() + row.ends + EndBytes(row));
    row.text = static_cast<std::uint32_t>(textAt);
    row.ends = static_cast<std::uint32_t>(endsAt);
  }
  text_.swap(text);
  ends_.swap(ends);
  textGarbage_ = endsGarbage_ = 0;
}

std::vector<std::string_view> ReportTable::RowTexts(int row) const {
  if (!ValidRow(row)) return {};
  std::vector<std::string_view> cells = CellsOf(rows_[row]);
  cells.resize(CountWithoutTrailingEmpties(cells));
  return cells;
}

bool ReportTable::IsRowBlank(int row) const {
  if (!ValidRow(row)) return true;
  const Row& target = rows_[row];
  const std::string_view text = std::string_view(text_).substr(target.text, RowTextSize(target));
  return text.find_first_not_of(' ') == std::string_view::npos;
}

const ReportTable::CellExtra* ReportTable::FindExtra(const Row& row, int col) const {
  const Style* style = StyleOf(row);
  if (!style) return nullptr;
  for (const CellExtra& extra : style->extras) {
    if (extra.col == col) return &extra;
  }
  return nullptr;
}

ReportTable::CellExtra& ReportTable::EditExtra(Row& row, int col) {
  auto& extras = EditStyle(row).extras;
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
  if (!row.style) return;
  std::erase_if(styles_[row.style - 1].extras, [](const CellExtra& extra) {
    return !extra.hasColour && extra.picture == CellPicture::kNone && extra.checked < 0;
  });
  ReleaseIfPlain(row);
}

Colour ReportTable::BackColour(int row, int col) const {
  if (!ValidCell(row, col)) return kDefaultBack;
  const Style* style = StyleOf(rows_[row]);
  if (!style) return kDefaultBack;
  for (const CellExtra& extra : style->extras) {
    if (extra.col == col && extra.hasColour) return extra.colour;
  }
  return col < style->backSpan ? style->back : kDefaultBack;
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
  // A plain row painted the default colour stays as it is: the common case of a load.
  if (!target.style && colour == kDefaultBack) return;
  // A run of the default colour has no length that matters: such a row keeps none.
  const std::int32_t backSpan = target.style ? styles_[target.style - 1].backSpan : 0;
  if (firstCol == 0 && lastCol + 1 >= backSpan) {
    // The whole coloured run is repainted: one colour for the row, no exceptions up to lastCol.
    Style& style = EditStyle(target);
    style.back = colour;
    style.backSpan = colour == kDefaultBack ? 0 : lastCol + 1;
    for (CellExtra& extra : style.extras) {
      if (extra.col <= lastCol) extra.hasColour = false;
    }
    DropEmptyExtras(target);
    return;
  }
  for (int col = firstCol; col <= lastCol; ++col) {
    const Style* style = StyleOf(target);
    const Colour runColour = style && col < style->backSpan ? style->back : kDefaultBack;
    if (colour != runColour) {
      CellExtra& extra = EditExtra(target, col);
      extra.colour = colour;
      extra.hasColour = true;
    } else if (target.style) {
      for (CellExtra& extra : styles_[target.style - 1].extras) {
        if (extra.col == col) extra.hasColour = false;
      }
    }
  }
  DropEmptyExtras(target);
}

void ReportTable::AssignColours(Row& row, const std::vector<Colour>& colours) {
  const Colour back = colours.empty() ? kDefaultBack : colours[0];
  std::int32_t backSpan = 0;
  while (backSpan < static_cast<int>(colours.size()) && colours[backSpan] == back) ++backSpan;
  if (row.style || back != kDefaultBack) {
    Style& style = EditStyle(row);
    for (CellExtra& extra : style.extras) extra.hasColour = false;
    style.back = back;
    style.backSpan = back == kDefaultBack ? 0 : backSpan;
  }
  for (int col = backSpan; col < static_cast<int>(colours.size()); ++col) {
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
      if (kept != row) rows_[kept] = rows_[row];
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
    StoreRow(row, cells);

    if (row.style) {
      auto& extras = styles_[row.style - 1].extras;
      for (CellExtra& extra : extras) extra.col = newPosition(extra.col);
      std::sort(extras.begin(), extras.end(),
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

void ReportTable::Reserve(int rows, std::size_t textBytes, std::size_t cells) {
  if (rows > Rows()) rows_.reserve(static_cast<std::size_t>(rows));
  text_.reserve(text_.size() + textBytes);
  ends_.reserve(ends_.size() + cells);
}

}  // namespace sw::report
