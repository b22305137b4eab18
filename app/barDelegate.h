#pragma once

#include <QStyledItemDelegate>

/// Draws a bar behind a cell's text, as long as the share (0 to 1) that the model gives in a role
/// of its own; no bar where it gives none.
class BarDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  BarDelegate(int shareRole, QObject* parent);

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;

 private:
  int shareRole_;
};
