#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>

#include <vector>

class QTableView;

/// Keeps the columns of a table as wide as their titles and widest contents ask, and shares what
/// room is left over among them. A table that is too narrow for that scrolls. A width that the user
/// chose stays.
class ColumnFitter : public QObject {
  Q_OBJECT

 public:
  /// `widestTexts` holds for each column a text as wide as its content gets. The table, which has
  /// its model and its header already, owns the fitter.
  ColumnFitter(QTableView* table, QStringList widestTexts);

  /// The widths that the user chose, 0 for a column of which he chose none.
  std::vector<int> chosenWidths() const;
  void setChosenWidths(const std::vector<int>& widths);
  /// What all columns need.
  int neededWidth() const;

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void fit();
  int neededWidth(int section) const;
  void resized(int section, int width);

  QTableView* table_;
  QStringList widestTexts_;
  QMap<int, int> chosen_;  ///< Column to width.
  bool fitting_ = false;
};
