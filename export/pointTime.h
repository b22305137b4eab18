#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QString>

/// The times of a run's points as XML text: a date prefix ("2014-05-01T"), the point's time of day,
/// the offset text. Points carry no date, so those behind midnight keep the date of the start.
class PointTime {
 public:
  PointTime(const QString& datePrefix, const QString& offset);

  /// Valid until the next call.
  const QByteArray& of(const trackPointData& point);

 private:
  QByteArray prefix_;
  QByteArray offset_;
  QByteArray value_;  // kept for its memory
};
