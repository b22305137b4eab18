#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QStringList>

#include <vector>

class QTableView;

/// Where the tables get their content from. Main thread.
class TableDataSource {
 public:
  virtual ~TableDataSource() = default;
  /// Number of rows of the table, -1 for a table that is not known.
  virtual int numberOfRowsInTableView(const QTableView* table) const = 0;
  /// The text of a cell; null for an unknown table, column or row.
  virtual QString tableView(const QTableView* table, const QString& columnIdentifier,
                            int row) const = 0;
};

/// One column of a table.
struct TableColumn {
  QString identifier;  ///< Selects the content, see TableDataSource.
  QString title;
  bool isNumber = true;  ///< Numbers align right, texts left.
  QString widestText;    ///< A text as wide as the content gets; gives the first width.
};

/// The model behind one table view: it asks the data source for every cell, and shows of a text no
/// more than a window can paint.
class TableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// Makes the model the model of `table`, and the table its parent. `source` must outlive it.
  TableModel(QTableView* table, const TableDataSource* source, std::vector<TableColumn> columns);

  /// The content changed as a whole; the selection is gone afterwards.
  void reload();
  /// Sets the header text of every column with that identifier.
  void setTitle(const QString& identifier, const QString& title);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

  /// The columns' widest texts.
  QStringList widestTexts() const;

 private:
  QTableView* tableView_;
  const TableDataSource* dataSource_;
  std::vector<TableColumn> tableColumns_;
};

/// The columns of the runs, laps and points tables.
std::vector<TableColumn> runColumns();
std::vector<TableColumn> lapColumns();
std::vector<TableColumn> pointColumns();
