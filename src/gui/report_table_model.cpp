#include "gui/report_table_model.h"

#include <QBrush>
#include <QPainter>
#include <QPixmap>

#include "session/window_rules.h"

namespace sw::gui {
namespace {

constexpr int kPictureSize = 12;

QIcon PageBreakPicture() {
  QPixmap pixmap(kPictureSize, kPictureSize);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setPen(QPen(QColor(192, 0, 0), 2, Qt::DashLine));
  painter.drawLine(0, kPictureSize - 2, kPictureSize, kPictureSize - 2);
  painter.setPen(QPen(QColor(192, 0, 0), 1));
  painter.drawLine(kPictureSize / 2, 1, kPictureSize / 2, kPictureSize - 5);
  painter.drawLine(kPictureSize / 2, kPictureSize - 5, kPictureSize / 2 - 3, kPictureSize - 8);
  painter.drawLine(kPictureSize / 2, kPictureSize - 5, kPictureSize / 2 + 3, kPictureSize - 8);
  return QIcon(pixmap);
}

QIcon BlankPicture() {
  QPixmap pixmap(kPictureSize, kPictureSize);
  pixmap.fill(Qt::transparent);
  return QIcon(pixmap);
}

QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QColor GridColour(session::Colour colour) {
  if (colour == session::kDefaultBack || colour == session::kSystemWindowBackground) return {};
  return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                static_cast<int>((colour >> 16) & 0xFF));
}

ReportTableModel::ReportTableModel(const session::ReportTable& table, QObject* parent)
    : QAbstractTableModel(parent),
      table_(table),
      pageBreakIcon_(PageBreakPicture()),
      blankIcon_(BlankPicture()) {}

int ReportTableModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid() || frozen_) return 0;
  return table_.Rows() - 1;
}

int ReportTableModel::columnCount(const QModelIndex& parent) const {
  if (parent.isValid() || frozen_) return 0;
  return table_.Cols();
}

QVariant ReportTableModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const int row = TableRow(index);
  const int col = index.column();
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(table_.Text(row, col));
    case Qt::BackgroundRole: {
      const QColor colour = GridColour(table_.BackColour(row, col));
      return colour.isValid() ? QVariant(QBrush(colour)) : QVariant();
    }
    case Qt::DecorationRole:
      switch (table_.Picture(row, col)) {
        case session::CellPicture::kPageBreak:
          return pageBreakIcon_;
        case session::CellPicture::kBlank:
          return blankIcon_;
        case session::CellPicture::kNone:
          return {};
      }
      return {};
    default:
      return {};
  }
}

QVariant ReportTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Horizontal && role == Qt::DisplayRole && !frozen_ && section >= 0 &&
      section < table_.Cols()) {
    return ToQString(table_.Text(0, section));
  }
  if (orientation == Qt::Vertical && role == Qt::DisplayRole) return section + 1;
  return QAbstractTableModel::headerData(section, orientation, role);
}

void ReportTableModel::Freeze() {
  if (frozen_) return;
  beginResetModel();
  frozen_ = true;
  endResetModel();
}

void ReportTableModel::Thaw() {
  beginResetModel();
  frozen_ = false;
  endResetModel();
}

}  // namespace sw::gui
