#include "gui/preview_grid.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QScrollBar>

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
  // Sideways by the pixel, so that the column under the frozen one can still be brought into view.
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  BuildFrozenColumn();
}

void PreviewGrid::BuildFrozenColumn() {
  frozen_ = new QTableView(this);
  frozen_->setObjectName(QStringLiteral("fgFrozen"));
  frozen_->setFocusPolicy(Qt::NoFocus);
  frozen_->setSelectionBehavior(QAbstractItemView::SelectRows);
  frozen_->setSelectionMode(QAbstractItemView::SingleSelection);
  frozen_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  frozen_->setWordWrap(false);
  frozen_->setIconSize(iconSize());
  frozen_->verticalHeader()->setVisible(false);
  frozen_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  frozen_->verticalHeader()->setDefaultSectionSize(verticalHeader()->defaultSectionSize());
  frozen_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  frozen_->horizontalHeader()->setHighlightSections(false);
  frozen_->horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
  frozen_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  frozen_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  frozen_->setVerticalScrollMode(verticalScrollMode());
  frozen_->setFrameShape(QFrame::NoFrame);
  frozen_->setContextMenuPolicy(Qt::CustomContextMenu);
  frozen_->setVisible(false);

  connect(frozen_->verticalScrollBar(), &QAbstractSlider::valueChanged, verticalScrollBar(),
          &QAbstractSlider::setValue);
  connect(verticalScrollBar(), &QAbstractSlider::valueChanged, frozen_->verticalScrollBar(),
          &QAbstractSlider::setValue);
  connect(horizontalScrollBar(), &QAbstractSlider::valueChanged, this, &PreviewGrid::ShowFrozenColumn);
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int section, int, int size) {
    if (section != 0) return;
    frozen_->setColumnWidth(0, size);
    ShowFrozenColumn();
  });
  connect(frozen_, &QAbstractItemView::doubleClicked, this,
          [this](const QModelIndex& index) { emit rowDoubleClicked(ReportTableModel::TableRow(index)); });
  connect(frozen_, &QWidget::customContextMenuRequested, this, &PreviewGrid::FrozenContextMenu);
  connect(frozen_->horizontalHeader(), &QWidget::customContextMenuRequested, this,
          [this](const QPoint& pos) { HeadingContextMenu(pos); });
  // A click in the frozen column moves the grid's own current cell, so the keys go on from there.
  connect(frozen_, &QAbstractItemView::pressed, this, [this](const QModelIndex& index) {
    setCurrentIndex(model()->index(index.row(), 0));
    setFocus(Qt::MouseFocusReason);
  });
}

void PreviewGrid::setModel(QAbstractItemModel* model) {
  QTableView::setModel(model);
  frozen_->setModel(model);
  frozen_->setSelectionModel(selectionModel());
  const auto sync = [this] { ShowFrozenColumn(); };
  connect(model, &QAbstractItemModel::modelReset, this, sync);
  connect(model, &QAbstractItemModel::columnsInserted, this, sync);
  connect(model, &QAbstractItemModel::columnsRemoved, this, sync);
  connect(model, &QAbstractItemModel::layoutChanged, this, sync);
  ShowFrozenColumn();
}

void PreviewGrid::ShowFrozenColumn() {
  if (!frozen_ || !model()) return;
  const int columns = model()->columnCount();
  for (int c = 1; c < columns; ++c) frozen_->setColumnHidden(c, true);
  if (columns > 0) frozen_->setColumnWidth(0, columnWidth(0));
  // Only while the names would have gone out of view: otherwise column 0 is where it always is.
  const bool scrolled = columns > 1 && horizontalScrollBar()->value() > 0;
  frozen_->setVisible(scrolled);
  if (!scrolled) return;
  // One pixel more than the column: its grid line marks where the columns pass beneath it.
  frozen_->setGeometry(frameWidth(), frameWidth(), columnWidth(0) + 1,
                       viewport()->height() + horizontalHeader()->height());
  frozen_->horizontalHeader()->setFixedHeight(horizontalHeader()->height());
  frozen_->verticalScrollBar()->setValue(verticalScrollBar()->value());
}

void PreviewGrid::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  ShowFrozenColumn();
  emit resized();
}

void PreviewGrid::updateGeometries() {
  QTableView::updateGeometries();
  ShowFrozenColumn();
}

void PreviewGrid::scrollTo(const QModelIndex& index, ScrollHint hint) {
  QTableView::scrollTo(index, hint);
  // A cell of another column is not left under the frozen one.
  if (!frozen_ || !frozen_->isVisible() || !index.isValid() || index.column() == 0) return;
  const int hidden = frozen_->width() - visualRect(index).left();
  if (hidden > 0) horizontalScrollBar()->setValue(horizontalScrollBar()->value() - hidden);
}

void PreviewGrid::FrozenContextMenu(const QPoint& pos) {
  const QModelIndex under = frozen_->indexAt(pos);
  if (under.isValid()) setCurrentIndex(model()->index(under.row(), 0));
  emit popupRequested(CurrentTableRow(), pos.y() + HeadingHeight(), frozen_->viewport()->mapToGlobal(pos));
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
