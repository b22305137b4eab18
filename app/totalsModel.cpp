#include "app/totalsModel.h"

#include "base/text.h"

#include <QFont>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using totals::Totals;

void TotalsModel::setTotals(totals::Table table, totals::Period period) {
  beginResetModel();
  table_ = std::move(table);
  period_ = period;
  farthest_ = 0;
  for (const Totals& sum : table_.periods) {
    farthest_ = std::max(farthest_, sum.kilometres);
  }
  endResetModel();
}

const Totals* TotalsModel::at(int row) const {
  if (row < 0 || row >= rowCount()) {
    return nullptr;
  }
  return row == 0 ? &table_.all : &table_.periods[static_cast<std::size_t>(row) - 1];
}

int TotalsModel::rowOf(QDate first) const {
  for (int row = 0; row < rowCount(); ++row) {
    if (at(row)->first == first) {
      return row;
    }
  }
  return -1;
}

int TotalsModel::rowCount(const QModelIndex& parent) const {
  const bool isEmpty = parent.isValid() || table_.all.runs == 0;
  return isEmpty ? 0 : static_cast<int>(table_.periods.size()) + 1;
}

int TotalsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns;
}

QVariant TotalsModel::data(const QModelIndex& index, int role) const {
  const Totals* sum = index.isValid() ? at(index.row()) : nullptr;
  if (sum == nullptr) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
      return textOf(*sum, index.column());
    case Qt::ToolTipRole:
      return tipOf(*sum);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter |
                                 (index.column() == name ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::FontRole:
      if (index.row() == 0) {
        QFont bold;
        bold.setBold(true);
        return bold;
      }
      return {};
    case shareRole:
      return index.column() == distance && index.row() > 0 && farthest_ > 0
                 ? QVariant(sum->kilometres / farthest_)
                 : QVariant();
    default:
      return {};
  }
}

QVariant TotalsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  static const QStringList titles = {
      u"期間"_s, u"ラン"_s, u"距離 (km)"_s, u"時間"_s, u"平均ペース (/km)"_s, u"最長 (km)"_s};
  if (orientation != Qt::Horizontal || section < 0 || section >= columns) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
      return titles.at(section);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter |
                                 (section == name ? Qt::AlignLeft : Qt::AlignRight));
    default:
      return {};
  }
}

QString TotalsModel::textOf(const Totals& sum, int column) const {
  switch (column) {
    case name:
      return totals::nameOf(sum.first, period_);
    case runs:
      return QString::number(sum.runs);
    case distance:
      return text::fixed(sum.kilometres, 3);
    case time:
      return sum.time();
    case pace:
      return sum.averagePace();
    case longest:
      return text::fixed(sum.longest, 3);
    default:
      return {};
  }
}

QString TotalsModel::tipOf(const Totals& sum) const {
  if (!sum.first.isValid()) {
    return u"日付のないランも含みます"_s;
  }
  const QString day = u"yyyy-MM-dd"_s;
  return sum.first.toString(day) + u" 〜 "_s + totals::lastDay(sum.first, period_).toString(day);
}
