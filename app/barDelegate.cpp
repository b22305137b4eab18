#include "app/barDelegate.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

BarDelegate::BarDelegate(int shareRole, QObject* parent)
    : QStyledItemDelegate(parent), shareRole_(shareRole) {}

void BarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
  constexpr int margin = 2;
  const double share = index.data(shareRole_).toDouble();
  const bool isSelected = (option.state & QStyle::State_Selected) != 0;
  if (std::isfinite(share) && share > 0 && !isSelected) {
    QRect bar = option.rect.adjusted(margin, margin, -margin, -margin);
    bar.setWidth(static_cast<int>(std::min(share, 1.0) * bar.width()));
    // Under the text, and faint enough for it.
    QColor colour = option.palette.color(QPalette::Highlight);
    colour.setAlphaF(0.4F);
    painter->fillRect(bar, colour);
  }
  QStyledItemDelegate::paint(painter, option, index);
}
