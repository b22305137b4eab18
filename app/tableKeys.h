#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

class QKeyEvent;
class QTableView;

/// What a table of whole rows does with keys, beyond what views of cells do: Home and End go to the
/// first and last row, Ctrl+C copies the row, its texts separated by tabs. Main thread.
class TableKeys : public QObject {
  Q_OBJECT

 public:
  enum class Search { none, dates };

  /// With Search::dates, typed digits go to the first row whose first text begins with them,
  /// whichever column is the current one and whatever stands between the digits. The table owns the
  /// object.
  TableKeys(QTableView* table, Search search);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool takes(const QKeyEvent& key);
  bool searches(const QString& typed);
  void choose(int row);
  void copyRow() const;

  QTableView* table_;
  Search search_;
  QString typed_;  ///< Digits only.
  QElapsedTimer sinceTyped_;
};
