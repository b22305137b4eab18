#include "app/columnFitter.h"

#include "app/tableModel.h"

#include <QEvent>
#include <QHeaderView>
#include <QTableView>

#include <algorithm>
#include <numeric>
#include <vector>

ColumnFitter::ColumnFitter(QTableView* table, const TableModel* model)
    : QObject(table), table_(table), model_(model) {
  table->viewport()->installEventFilter(this);
  // Titles arrive after the window was made.
  connect(model, &QAbstractItemModel::headerDataChanged, this, &ColumnFitter::fit);
  fit();
}

bool ColumnFitter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize || event->type() == QEvent::FontChange) {
    fit();
  }
  return QObject::eventFilter(watched, event);
}

int ColumnFitter::neededWidth(int section) const {
  constexpr int margin = 10;
  const QString title = model_->headerData(section, Qt::Horizontal).toString();
  const QString& widest = model_->columns().at(static_cast<std::size_t>(section)).widestText;
  return margin + std::max(table_->horizontalHeader()->fontMetrics().horizontalAdvance(title),
                           table_->fontMetrics().horizontalAdvance(widest));
}

void ColumnFitter::fit() {
  std::vector<int> widths;
  for (int section = 0; section < model_->columnCount(); ++section) {
    widths.push_back(neededWidth(section));
  }
  const int needed = std::accumulate(widths.begin(), widths.end(), 0);
  const int spare = std::max(0, table_->viewport()->width() - needed);
  for (int section = 0; section < model_->columnCount(); ++section) {
    const int width = widths[static_cast<std::size_t>(section)];
    table_->setColumnWidth(section, width + spare * width / std::max(1, needed));
  }
}
