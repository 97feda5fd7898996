#include "gui/preview_grid.h"

#include <QContextMenuEvent>
#include <QHeaderView>

#include "gui/report_table_model.h"

namespace sw::gui {

PreviewGrid::PreviewGrid(QWidget* parent) : QTableView(parent) {
  setObjectName(QStringLiteral("fgPreView"));
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setWordWrap(false);
  setIconSize(QSize(12, 12));
  // Every row is one line high: a 200,000-row report must not be measured row by row.
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
  verticalHeader()->setVisible(false);
  horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  horizontalHeader()->setHighlightSections(false);
  // The column auto-size measures the rows on screen and a sample, never all of them.
  horizontalHeader()->setResizeContentsPrecision(1000);
  horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(horizontalHeader(), &QWidget::customContextMenuRequested, this, &PreviewGrid::HeadingContextMenu);
  connect(this, &QAbstractItemView::doubleClicked, this,
          [this](const QModelIndex& index) { emit rowDoubleClicked(ReportTableModel::TableRow(index)); });
}

int PreviewGrid::CurrentTableRow() const {
  const QModelIndex current = currentIndex();
  return current.isValid() ? ReportTableModel::TableRow(current) : 0;
}

int PreviewGrid::HeadingHeight() const {
  return horizontalHeader()->isVisible() ? horizontalHeader()->height() : 0;
}

void PreviewGrid::contextMenuEvent(QContextMenuEvent* event) {
  // The scroll area hands the viewport's events on with viewport coordinates. The row under the
  // pointer becomes current first, so the user sees which row the popup acts on.
  const QModelIndex under = indexAt(event->pos());
  if (under.isValid()) setCurrentIndex(under);
  emit popupRequested(CurrentTableRow(), event->pos().y() + HeadingHeight(), event->globalPos());
  event->accept();
}

void PreviewGrid::HeadingContextMenu(const QPoint& pos) {
  // Over the headings the pointer is not below the heading row: the popup comes with nothing enabled.
  emit popupRequested(CurrentTableRow(), pos.y(), horizontalHeader()->mapToGlobal(pos));
}

}  // namespace sw::gui
