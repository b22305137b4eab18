#pragma once

#include "stats/totals.h"

#include <QAbstractTableModel>

/// The totals as rows: the sum over all runs first, then the periods, newest first. Main thread.
class TotalsModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { name, runs, distance, time, pace, longest, columns };
  /// Of a distance: its share of the longest period's, from 0 to 1; nothing for the sum over all.
  static constexpr int shareRole = Qt::UserRole;

  using QAbstractTableModel::QAbstractTableModel;

  void setTotals(totals::Table table, totals::Period period);
  /// What the row shows; null when there is no such row.
  const totals::Totals* at(int row) const;
  /// The row of the period that begins on `first`, or of the sum over all; -1 when there is none.
  int rowOf(QDate first) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

 private:
  QString textOf(const totals::Totals& sum, int column) const;
  QString tipOf(const totals::Totals& sum) const;

  totals::Table table_;
  totals::Period period_ = totals::Period::month;
  double farthest_ = 0;  ///< Kilometres of the period with the most.
};
