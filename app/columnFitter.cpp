#include "app/columnFitter.h"

#include "app/unitHeader.h"

#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QTableView>

#include <algorithm>
#include <utility>

ColumnFitter::ColumnFitter(QTableView* table, QStringList widestTexts)
    : QObject(table), table_(table), widestTexts_(std::move(widestTexts)) {
  table->viewport()->installEventFilter(this);
  // Titles arrive after the window was made.
  connect(table->model(), &QAbstractItemModel::headerDataChanged, this, &ColumnFitter::fit);
  connect(table->horizontalHeader(), &QHeaderView::sectionResized, this,
          [this](int section, int /*before*/, int width) { resized(section, width); });
  fit();
}

std::vector<int> ColumnFitter::chosenWidths() const {
  std::vector<int> widths;
  widths.reserve(static_cast<std::size_t>(widestTexts_.size()));
  for (int section = 0; section < widestTexts_.size(); ++section) {
    widths.push_back(chosen_.value(section));
  }
  return widths;
}

void ColumnFitter::setChosenWidths(const std::vector<int>& widths) {
  constexpr int narrowest = 10;
  constexpr int widest = 2000;
  chosen_.clear();
  for (std::size_t i = 0; i < widths.size(); ++i) {
    if (widths[i] >= narrowest && widths[i] <= widest) {
      chosen_.insert(static_cast<int>(i), widths[i]);
    }
  }
  fit();
}

int ColumnFitter::neededWidth() const {
  int sum = 0;
  for (int section = 0; section < widestTexts_.size(); ++section) {
    sum += neededWidth(section);
  }
  return sum;
}

bool ColumnFitter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize || event->type() == QEvent::FontChange) {
    fit();
  }
  return QObject::eventFilter(watched, event);
}

int ColumnFitter::neededWidth(int section) const {
  constexpr int margin = 10;
  const auto title = table_->model()->headerData(section, Qt::Horizontal).toString();
  const QFontMetrics metrics = table_->horizontalHeader()->fontMetrics();
  int width = table_->fontMetrics().horizontalAdvance(widestTexts_.at(section));
  for (const QString& line : UnitHeader::broken(title).split(u'\n')) {
    width = std::max(width, metrics.horizontalAdvance(line));
  }
  return margin + width;
}

void ColumnFitter::fit() {
  const QScopedValueRollback<bool> ours(fitting_, true);
  int fixed = 0;
  int needed = 0;
  for (int section = 0; section < widestTexts_.size(); ++section) {
    fixed += chosen_.value(section);
    needed += chosen_.contains(section) ? 0 : neededWidth(section);
  }
  const int spare = std::max(0, table_->viewport()->width() - fixed - needed);
  for (int section = 0; section < widestTexts_.size(); ++section) {
    const int width = neededWidth(section);
    table_->setColumnWidth(
        section, chosen_.value(section, width + static_cast<int>(static_cast<qint64>(spare) *
                                                                 width / std::max(1, needed))));
  }
}

void ColumnFitter::resized(int section, int width) {
  if (!fitting_ && width > 0) {
    chosen_.insert(section, width);
  }
}
