#include "app/tableLook.h"

#include "app/columnFitter.h"
#include "app/unitHeader.h"

#include <QFontInfo>
#include <QTableView>

#include <algorithm>

namespace {

/// Japanese faces leave much room above and below already, others little.
int rowHeight(const QTableView* table) {
  constexpr double ofSize = 1.65;
  constexpr int narrowest = 2;
  return std::max(table->fontMetrics().height() + narrowest,
                  qRound(ofSize * QFontInfo(table->font()).pixelSize()));
}

}  // namespace

ColumnFitter* dressTable(QTableView* table, const QStringList& widestTexts) {
  constexpr double headerSize = 0.9;
  auto* header = new UnitHeader(table);
  table->setHorizontalHeader(header);
  header->show();
  QFont headerFont = table->font();
  headerFont.setPointSizeF(headerFont.pointSizeF() * headerSize);
  header->setFont(headerFont);
  header->setMinimumSectionSize(10);
  table->verticalHeader()->hide();
  table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table->verticalHeader()->setMinimumSectionSize(1);
  table->verticalHeader()->setDefaultSectionSize(rowHeight(table));
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setAlternatingRowColors(true);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  table->setShowGrid(false);
  table->setWordWrap(false);
  table->setCornerButtonEnabled(false);
  table->setTabKeyNavigation(false);
  return new ColumnFitter(table, widestTexts);  // the table owns it
}

int heightFor(const QTableView* table, int rows) {
  return table->horizontalHeader()->sizeHint().height() +
         rows * table->verticalHeader()->defaultSectionSize() + 2 * table->frameWidth();
}
