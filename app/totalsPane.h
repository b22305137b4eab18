#pragma once

#include "data/records.h"
#include "stats/totals.h"

#include <QDate>
#include <QStringList>
#include <QWidget>

class ColumnFitter;
class QTableView;
class TotalsModel;

/// The totals of the runs by week, month or year. Main thread.
class TotalsPane : public QWidget {
  Q_OBJECT

 public:
  explicit TotalsPane(QWidget* parent = nullptr);

  /// The stored runs, and their keys in the order of the runs table.
  void setRuns(const RunDictionary& runs, const QStringList& keys);
  void setPeriod(totals::Period period);
  /// First and last day of the period that is chosen; both invalid when it is none or the sum.
  std::pair<QDate, QDate> chosenDays() const;

  QTableView* table() const { return table_; }
  ColumnFitter* columns() const { return columns_; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  /// The user chose a period whose first run stands at that position among the keys.
  void chosen(qsizetype position);

 private:
  void addPeriodButtons();
  void setUpTable();
  void count();
  void choose();

  RunDictionary runs_;
  QStringList keys_;
  totals::Period period_ = totals::Period::month;
  TotalsModel* model_;
  QTableView* table_;
  ColumnFitter* columns_ = nullptr;
};
