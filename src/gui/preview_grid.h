#pragma once
// fgPreView: the report table with its headings, colours and pictures. The grid only reports where
// the user pointed; what the popup offers and what a double-click does is the preview's logic.
#include <QTableView>

namespace sw::gui {

class PreviewGrid final : public QTableView {
  Q_OBJECT
 public:
  explicit PreviewGrid(QWidget* parent = nullptr);

  // The grid's current row as the report table counts it (the headings are row 0); 0 when none.
  int CurrentTableRow() const;
  // The height of the heading row, which the popup's pointer test compares with.
  int HeadingHeight() const;

 signals:
  // The right button went down at `pointerY` (grid coordinates: the heading row starts at 0) with the
  // grid's current row `tableRow`; `globalPos` is where the popup goes.
  void popupRequested(int tableRow, int pointerY, QPoint globalPos);
  void rowDoubleClicked(int tableRow);

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void HeadingContextMenu(const QPoint& pos);
};

}  // namespace sw::gui
