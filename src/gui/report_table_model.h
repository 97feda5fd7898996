#pragma once
// The preview grid's model: reads the report table in place, one call per cell asked for, so a
// 200,000-row report costs nothing beyond the table itself. Row 0 of the table (the headings) is the
// horizontal header; model row r is the table's report row r + 1.
#include <QAbstractTableModel>
#include <QColor>
#include <QIcon>

#include "session/window_rules.h"

namespace sw::gui {

// A Windows colour (&HBBGGRR) as the grid paints it; the grid default (0) and the system window
// colour (&H80000005) are the view's own base colour, an invalid QColor.
QColor GridColour(session::Colour colour);

class ReportTableModel final : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit ReportTableModel(const session::ReportTable& table, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // The table is about to change under the view (a load, an edit): the view sees an empty grid until
  // Thaw, so that painting while a load shows its progress never reads half-built rows.
  void Freeze();
  void Thaw();
  bool Frozen() const { return frozen_; }

  static int TableRow(const QModelIndex& index) { return index.row() + 1; }

 private:
  const session::ReportTable& table_;
  bool frozen_ = false;
  QIcon pageBreakIcon_;
  QIcon blankIcon_;
};

}  // namespace sw::gui
