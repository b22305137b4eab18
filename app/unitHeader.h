#pragma once

#include <QHeaderView>

/// A table's header whose titles break before their unit: "平均速度 (km/h)" takes two short lines
/// instead of a wide one.
class UnitHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit UnitHeader(QWidget* parent);

  /// The title as it is drawn.
  static QString broken(const QString& title);

 protected:
  void initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const override;
  QSize sectionSizeFromContents(int logicalIndex) const override;
};
