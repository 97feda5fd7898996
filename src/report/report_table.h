#pragma once
// The loaded report as the preview grid holds it: row 0 is the heading row, rows 1.. are report rows
// in dump order, column i holds the dump's field i. Besides text, every cell has a background colour,
// a picture and a check state; the row classes are read from column 0's colour and text.
//
// The operations mirror the grid the program was designed around (set the row count to append or
// truncate, set a colour over a cell range, remove a row by index, move a column), so the preview
// rules can be written as they are specified. Storage is compact: a 200,000-row dump must load in a
// fraction of a second and within a small multiple of the file's size.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/large_pages.h"
#include "report/colours.h"

namespace sw::report {

enum class CellPicture : std::uint8_t { kNone, kBlank, kPageBreak };

enum class RowClass {
  kPlacementHead,  // column 0 green with text
  kManualBreak,    // column 0 green without text
  kPageBreakMark,  // column 0 yellow
  kOrdinary,       // anything else
};

class ReportTable {
 public:
  // One column and only the heading row.
  ReportTable();

  int Rows() const;
  int Cols() const;
  // Truncates or appends empty default-coloured rows; at least 1 (the heading row stays).
  void SetRows(int rows);
  // Drops or appends columns on every row; at least 1. Columns added later start empty and
  // default-coloured, also where a narrower table once had text.
  void SetCols(int cols);

  // Out-of-range coordinates read as empty text / default colour / no picture / no check state, and
  // writes to them are ignored. A returned view stays valid until the table is next changed.
  std::string_view Text(int row, int col) const;
  void SetText(int row, int col, std::string_view text);

  Colour BackColour(int row, int col) const;
  void SetBackColour(int row, int col, Colour colour);
  // Paints cells (row, firstCol) .. (row, lastCol), both inclusive.
  void SetRowBackColour(int row, int firstCol, int lastCol, Colour colour);

  CellPicture Picture(int row, int col) const;
  void SetPicture(int row, int col, CellPicture picture);

  std::optional<bool> Checked(int row, int col) const;
  void SetChecked(int row, int col, bool checked);

  // Inserts an empty default-coloured row at `row` (1 .. Rows()); the rows from there move down.
  void InsertRow(int row);
  // Removes report row `row` (1 .. Rows()-1); the rows below move up.
  void RemoveRow(int row);
  // Moves column `from` to position `to`; the columns between shift by one.
  void MoveColumn(int from, int to);

  RowClass ClassOf(int row) const;

  // Appends a row of fields as the grid's AddGridRow does: see report/add_grid_row.h.

  // Sets cells (row, 0) .. (row, n-1) to `texts`, n capped at Cols(); the row's other cells keep
  // their text. One call per row instead of one per cell keeps a large load cheap.
  void SetRowTexts(int row, std::span<const std::string_view> texts);

  // Appends a plain, default-coloured report row whose cells come packed: `text` holds them back to
  // back and ends[i] is where cell i ends in it. Cells from Cols() on are left out. The way a large
  // load stores its rows without a view per cell.
  void AppendPackedRow(std::string_view text, std::span<const std::uint32_t> ends);

  // The row's cell texts from column 0 on, up to its last non-empty cell (views valid until the table
  // changes). Cheaper than Text() per cell on wide rows.
  std::vector<std::string_view> RowTexts(int row) const;

  // True when every cell of the row holds nothing but spaces (also for a row out of range).
  bool IsRowBlank(int row) const;

  // Removes, in one pass, every report row for which `shouldRemove` answers true. It is asked about
  // each report row once, from the last row up to row 1, with the numbering before any removal.
  void RemoveRowsIf(const std::function<bool(int row)>& shouldRemove);

  // Room for `rows` rows in all, `textBytes` more bytes of stored text and `cells` more stored cells,
  // so that a large dump is stored without the storage growing (and briefly existing twice) on the way.
  void Reserve(int rows, std::size_t textBytes, std::size_t cells = 0);

 private:
  // A cell that differs from its row's plain form: its own colour, a picture or a check state.
  struct CellExtra {
    int col = 0;
    Colour colour = kDefaultBack;
    bool hasColour = false;
    CellPicture picture = CellPicture::kNone;
    std::int8_t checked = -1;  // -1: no check box
  };
  // What only some rows have: a background colour other than the default, or cells of their own.
  struct Style {
    Colour back = kDefaultBack;  // colour of columns 0 .. backSpan-1; later columns are default
    std::int32_t backSpan = 0;
    std::vector<CellExtra> extras;  // sorted by column
  };
  // The grid reads any cell in constant time, and a large dump takes little more room than its file:
  // a row's cells lie back to back in text_, and their end offsets, counted from the row's first
  // byte, in ends_ as 1, 2 or 4 bytes each (the narrowest that holds the row's text length). Trailing
  // empty cells are not stored. 16 bytes a row; a plain row has no Style.
  struct Row {
    std::uint32_t text = 0;   // the row's first byte in text_
    std::uint32_t ends = 0;   // the row's first cell end in ends_
    std::uint32_t cells = 0;  // stored cells, with the width of an end in the top two bits
    std::uint32_t style = 0;  // 1 + the row's index in styles_; 0 for a plain row
  };
  static constexpr int kWidthShift = 30;
  static constexpr std::uint32_t kCountMask = (std::uint32_t{1} << kWidthShift) - 1;

  static std::uint32_t CellCount(const Row& row) { return row.cells & kCountMask; }
  static std::size_t EndBytes(const Row& row) {
    return std::size_t{CellCount(row)} << (row.cells >> kWidthShift);
  }
  std::size_t CellEnd(const Row& row, std::uint32_t cell) const;
  std::size_t RowTextSize(const Row& row) const {
    return CellCount(row) ? CellEnd(row, CellCount(row) - 1) : 0;
  }
  std::string_view CellText(const Row& row, std::uint32_t cell) const;

  bool ValidRow(int row) const { return row >= 0 && row < Rows(); }
  bool ValidCell(int row, int col) const { return ValidRow(row) && col >= 0 && col < cols_; }
  std::vector<std::string_view> CellsOf(const Row& row) const;
  // Stores `cells` (trailing empties dropped) as the row's cells: in place when they fit, else at the
  // ends of the buffers. The views may point into the table's own text.
  void StoreRow(Row& row, std::span<const std::string_view> cells);
  void WriteRow(Row& row, std::size_t textAt, std::size_t endsAt, std::span<const std::string_view> cells,
                int widthCode);
  void Discard(Row& row);
  void CompactIfWasteful();

  const Style* StyleOf(const Row& row) const { return row.style ? &styles_[row.style - 1] : nullptr; }
  Style& EditStyle(Row& row);
  // Lets a row that is plain again give its style back.
  void ReleaseIfPlain(Row& row);
  const CellExtra* FindExtra(const Row& row, int col) const;
  CellExtra& EditExtra(Row& row, int col);
  void DropEmptyExtras(Row& row);
  // Rebuilds a row's colour run and colour exceptions from one explicit colour per column.
  void AssignColours(Row& row, const std::vector<Colour>& colours);

  // A large load fills these right after reserving them: see base/large_pages.h.
  using TextStore = std::basic_string<char, std::char_traits<char>, base::LargePageAllocator<char>>;
  using EndStore = std::vector<std::uint8_t, base::LargePageAllocator<std::uint8_t>>;

  static int WidthCode(std::size_t bytes) { return bytes <= 0xFF ? 0 : bytes <= 0xFFFF ? 1 : 2; }

  std::vector<Row, base::LargePageAllocator<Row>> rows_;
  int cols_ = 1;
  TextStore text_;               // every row's cells, back to back
  EndStore ends_;                // every row's cell ends, back to back
  std::size_t textGarbage_ = 0;  // bytes of text_ no row refers to any more
  std::size_t endsGarbage_ = 0;  // bytes of ends_ no row refers to any more
  std::vector<Style> styles_;
  std::vector<std::uint32_t> freeStyles_;  // slots of styles_ no row uses
  std::string scratch_;                    // a row's texts while they are rewritten from the table's own text
};

}  // namespace sw::report
