#pragma once
// The loaded report as the preview grid holds it: row 0 is the heading row, rows 1.. are report rows
// in dump order, column i holds the dump's field i. Besides text, every cell has a background colour,
// a picture and a check state; the row classes are read from column 0's colour and text.
//
// The operations mirror the grid the program was designed around (set the row count to append or
// truncate, set a colour over a cell range, remove a row by index, move a column), so the preview
// rules can be written as they are specified. Storage is compact: a 200,000-row dump must load in a
// fraction of a second and within a small multiple of the file's size.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
  // Drops or appends columns on every row; at least 1.
  void SetCols(int cols);

  // Out-of-range coordinates read as empty text / default colour / no picture / no check state.
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

  // Appends a row of fields as the grid's AddGridRow does (see report/add_grid_row.h).
 private:
  struct Cell;
  struct Row;
  // Implementation defined in report_table.cpp.
  std::vector<Row> rows_;
  int cols_ = 1;
};

}  // namespace sw::report
