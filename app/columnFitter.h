#pragma once

#include <QObject>

class QTableView;
class TableModel;

/// Keeps the columns of a table as wide as their titles and widest contents ask, and shares what
/// room is left over among them. A table that is too narrow for that scrolls. Widths that the user
/// chose last until the table changes its size.
class ColumnFitter : public QObject {
  Q_OBJECT

 public:
  /// `table` shows `model` and owns the fitter.
  ColumnFitter(QTableView* table, const TableModel* model);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void fit();
  int neededWidth(int section) const;

  QTableView* table_;
  const TableModel* model_;
};
