#include "app/tableModel.h"

#include "app/shortText.h"

#include <QTableView>

#include <algorithm>
#include <utility>

TableModel::TableModel(QTableView* table, const TableDataSource* source,
                       std::vector<TableColumn> columns)
    : QAbstractTableModel(table),
      tableView_(table),
      dataSource_(source),
      tableColumns_(std::move(columns)) {
  table->setModel(this);
}

void TableModel::reload() {
  beginResetModel();
  endResetModel();
}

void TableModel::setTitle(const QString& identifier, const QString& title) {
  for (std::size_t i = 0; i < tableColumns_.size(); ++i) {
    if (tableColumns_[i].identifier == identifier) {
      tableColumns_[i].title = title;
      Q_EMIT headerDataChanged(Qt::Horizontal, static_cast<int>(i), static_cast<int>(i));
    }
  }
}

int TableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : std::max(0, dataSource_->numberOfRowsInTableView(tableView_));
}

int TableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(tableColumns_.size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  const TableColumn& column = tableColumns_.at(static_cast<std::size_t>(index.column()));
  if (role == Qt::DisplayRole) {
    return shortened(dataSource_->tableView(tableView_, column.identifier, index.row()));
  }
  if (role == Qt::TextAlignmentRole) {
    return QVariant::fromValue(Qt::AlignVCenter |
                               (column.isNumber ? Qt::AlignRight : Qt::AlignLeft));
  }
  return {};
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
    return {};
  }
  const TableColumn& column = tableColumns_.at(static_cast<std::size_t>(section));
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
    return column.title;
  }
  if (role == Qt::TextAlignmentRole) {
    return QVariant::fromValue(Qt::AlignVCenter |
                               (column.isNumber ? Qt::AlignRight : Qt::AlignLeft));
  }
  return {};
}

QStringList TableModel::widestTexts() const {
  QStringList texts;
  for (const TableColumn& column : tableColumns_) {
    texts << column.widestText;
  }
  return texts;
}

// Titles left empty here are set when the window starts.

std::vector<TableColumn> runColumns() {
  const QString time = QStringLiteral("2000-00-00 00:00:00");
  return {{QStringLiteral("Collumn1"), QStringLiteral("開始日時"), false, time},
          {QStringLiteral("Collumn2"), QStringLiteral("終了日時"), false, time},
          {QStringLiteral("Collumn3"), {}, true, QStringLiteral("000.000")}};
}

std::vector<TableColumn> lapColumns() {
  return {{QStringLiteral("l0"), QStringLiteral("ラップ"), false,
           QStringLiteral("2000-00-00 00:00:00")},
          {QStringLiteral("l1"), QStringLiteral("タイム"), true, QStringLiteral("00:00:00.00")},
          {QStringLiteral("l2"), {}, true, QStringLiteral("000.000")},
          {QStringLiteral("l3"), {}, true, QStringLiteral("00.0")},
          {QStringLiteral("l4"), {}, true, QStringLiteral("00'00")},
          {QStringLiteral("l5"), {}, true, QStringLiteral("00.0")},
          {QStringLiteral("l6"), QStringLiteral("平均心拍"), true, QStringLiteral("000")},
          {QStringLiteral("l7"), QStringLiteral("最大心拍"), true, QStringLiteral("000")},
          {QStringLiteral("l8"), QStringLiteral("タイムゾーン"), true, QStringLiteral("00:00:00")},
          {QStringLiteral("l9"), QStringLiteral("カロリー"), true, QStringLiteral("0000")}};
}

std::vector<TableColumn> pointColumns() {
  return {{QStringLiteral("0"), QStringLiteral("番号"), true, QStringLiteral("000000")},
          {QStringLiteral("1"), QStringLiteral("時刻"), true, QStringLiteral("00:00:00")},
          {QStringLiteral("2"), {}, true, QStringLiteral("000.000")},
          {QStringLiteral("3"), {}, true, QStringLiteral("00.0")},
          {QStringLiteral("4"), {}, true, QStringLiteral("00'00")},
          {QStringLiteral("5"), QStringLiteral("心拍数 (bpm)"), true, QStringLiteral("000")},
          {QStringLiteral("6"), QStringLiteral("カロリー"), true, QStringLiteral("000000")},
          {QStringLiteral("7"), {}, true, QStringLiteral("00000")}};
}
