#include "export/pointTime.h"

#include "export/xmlDocument.h"

PointTime::PointTime(const QString& datePrefix, const QString& offset) {
  xml::appendText(prefix_, datePrefix);
  xml::appendText(offset_, offset);
}

const QByteArray& PointTime::of(const trackPointData& point) {
  value_.resize(0);
  value_.append(prefix_);
  xml::appendText(value_, point.T_PointTime);
  return value_.append(offset_);
}
