#pragma once
// fgPreView: the report table with its headings, colours and pictures. The grid only reports where
// the user pointed; what the popup offers and what a double-click does is the preview's logic.
#include <QTableView>

class QAbstractItemModel;

namespace sw::gui {

class PreviewGrid final : public QTableView {
  Q_OBJECT
 public:
  explicit PreviewGrid(QWidget* parent = nullptr);

  // The grid's current row as the report table counts it (the headings are row 0); 0 when none.
  int CurrentTableRow() const;
  // The height of the heading row, which the popup's pointer test compares with.
  int HeadingHeight() const;

  void setModel(QAbstractItemModel* model) override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

 signals:
  // The right button went down at `pointerY` (grid coordinates: the heading row starts at 0) with the
  // grid's current row `tableRow`; `globalPos` is where the popup goes.
  void popupRequested(int tableRow, int pointerY, QPoint globalPos);
  void rowDoubleClicked(int tableRow);
  // The grid got another size.
  void resized();

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void updateGeometries() override;

 private:
  void HeadingContextMenu(const QPoint& pos);
  // The placement names stay in view while the grid is scrolled sideways: a second view of column 0
  // lies over the grid's left edge, sharing its model, selection and vertical scrolling.
  void BuildFrozenColumn();
  void ShowFrozenColumn();
  void FrozenContextMenu(const QPoint& pos);

  QTableView* frozen_ = nullptr;
};

}  // namespace sw::gui
