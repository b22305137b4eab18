#include "app/unitHeader.h"

#include <QStyleOptionHeader>

UnitHeader::UnitHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setHighlightSections(false);
}

QString UnitHeader::broken(const QString& title) {
  return QString(title).replace(QStringLiteral(" ("), QStringLiteral("\n("));
}

void UnitHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const {
  QHeaderView::initStyleOptionForIndex(option, logicalIndex);
  option->text = broken(option->text);
  // Shortening would take both lines for one.
  if (auto* second = qstyleoption_cast<QStyleOptionHeaderV2*>(option)) {
    second->textElideMode = Qt::ElideNone;
  }
}

QSize UnitHeader::sectionSizeFromContents(int logicalIndex) const {
  QSize size = QHeaderView::sectionSizeFromContents(logicalIndex);
  const QString title = model()->headerData(logicalIndex, Qt::Horizontal).toString();
  size.rheight() += static_cast<int>(broken(title).count(u'\n')) * fontMetrics().lineSpacing();
  return size;
}
