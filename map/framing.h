#pragma once

#include <QString>

/// The box around a track, in degrees as stored (never shifted). `unset` in all four until a point
/// was taken in.
struct TrackBounds {
  static constexpr double unset = 500.0;
  double maxLat = unset;
  double minLat = unset;
  double maxLon = unset;
  double minLon = unset;

  bool operator==(const TrackBounds&) const = default;
};

/// A distance in kilometres on a flat earth. `a` and `b` are longitudes, `c` and `d` latitudes, in
/// degrees, although the names under which the controller offers it say otherwise.
double sumDist(double a, double b, double c, double d);

/// The zoom level, as decimal text, at which the box fits: 21 (metres) to 9. The middle comes from
/// the four arguments, the extent from `bounds`.
QString getZoom(const TrackBounds& bounds, double theMaxLat, double theMinLat, double theMaxLon,
                double theMinLon);
