#pragma once

#include "data/records.h"
#include "map/framing.h"

#include <QString>

/// A run's track as the map page takes it. The texts are script expressions that hold nothing but
/// numbers and the page's own constructors, whatever the stored texts hold.
struct TrackOverlay {
  /// Every usable point in stored order; empty when the run has none.
  QString expression;
  /// Where the runner paused: "1" for a track without breaks, else "new Array(0,...)" of point
  /// numbers and the last number; empty when `expression` is. The numbers count all stored points
  /// from 0, while `expression` holds only the usable ones.
  QString breakPointStr;
  /// The two points that place the direction arrow; null when no arrow was ever found.
  QString arrPointStr;
  /// Box around the usable points.
  TrackBounds bounds;
};

/// The track for the Google Maps page: coordinates as stored.
///
/// `pointDic` holds the points of run `number` under "number-1", "number-2", ...; a gap is logged
/// and skipped. `arrPointStr` is the arrow of an earlier run: it stays when this run's middle
/// stretch has no two neighbouring points that differ in latitude and longitude. The letters of the
/// hemispheres only tell whether a point has a position; they are never applied as signs, so
/// southern and western runs appear at the mirrored position. Pure but for the log, any thread.
TrackOverlay buildGoogleOverlay(const PointDictionary& pointDic, qint64 number,
                                const QString& arrPointStr);

/// The track for the AMap page: coordinates shifted to its datum (map/chinaShift.h), six decimals.
TrackOverlay buildGDOverlay(const PointDictionary& pointDic, qint64 number,
                            const QString& arrPointStr);

/// Where buildGoogleOverlay() puts a point, "latitude,longitude" as script numbers; null for a
/// point that it leaves out.
QString googlePosition(const trackPointData& point);
