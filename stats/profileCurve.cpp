#include "stats/profileCurve.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

/// The first point that is not before a place on the axis.
int firstFrom(const RunProfile& profile, ProfileAxis axis, double place) {
  const auto found = std::lower_bound(
      profile.points.begin(), profile.points.end(), place,
      [axis](const ProfilePoint& point, double limit) { return placeOf(point, axis) < limit; });
  return static_cast<int>(found - profile.points.begin());
}

const ProfilePoint& pointAt(const RunProfile& profile, int row) {
  return profile.points[static_cast<std::size_t>(row)];
}

/// The lowest and the highest value of a curve among some points in a row.
class Extremes {
 public:
  void take(std::optional<double> value) {
    if (!value) {
      return;
    }
    if (!low_ || *value < *low_) {
      low_ = value;
      lowIsLater_ = true;
    }
    if (!high_ || *value > *high_) {
      high_ = value;
      lowIsLater_ = false;
    }
  }
  std::optional<double> earlier() const { return lowIsLater_ ? high_ : low_; }
  std::optional<double> later() const { return lowIsLater_ ? low_ : high_; }

 private:
  std::optional<double> low_;
  std::optional<double> high_;
  bool lowIsLater_ = false;
};

/// The points in one column of pixels, as far as no pause parts them.
class Column {
 public:
  void take(double place, const ProfilePoint& point) {
    if (count_++ == 0) {
      first_ = {place, {}, {}, {}, point.isAfterPause};
    }
    last_ = place;
    speed_.take(point.speed);
    heartRate_.take(point.heartRate);
    altitude_.take(point.altitude);
  }

  void flush(std::vector<DrawnPoint>& all) {
    if (count_ > 0) {
      all.push_back({first_.place, speed_.earlier(), heartRate_.earlier(), altitude_.earlier(),
                     first_.isAfterPause});
    }
    if (count_ > 1) {
      all.push_back({last_, speed_.later(), heartRate_.later(), altitude_.later(), false});
    }
    *this = {};
  }

 private:
  int count_ = 0;
  DrawnPoint first_;
  double last_ = 0;
  Extremes speed_, heartRate_, altitude_;
};

}  // namespace

double placeOf(const ProfilePoint& point, ProfileAxis axis) {
  return axis == ProfileAxis::Distance ? point.along : point.elapsed;
}

int nearestPoint(const RunProfile& profile, ProfileAxis axis, double place) {
  const int count = static_cast<int>(profile.points.size());
  const int after = firstFrom(profile, axis, place);
  if (after == 0) {
    return count == 0 ? -1 : 0;
  }
  const double before = placeOf(pointAt(profile, after - 1), axis);
  const bool isBefore =
      after == count || place - before <= placeOf(pointAt(profile, after), axis) - place;
  return isBefore ? firstFrom(profile, axis, before) : after;
}

std::vector<DrawnPoint> drawnPoints(const RunProfile& profile, ProfileAxis axis, double from,
                                    double to, int columns) {
  const int count = static_cast<int>(profile.points.size());
  const int first = std::max(firstFrom(profile, axis, from) - 1, 0);
  const int end = std::min(firstFrom(profile, axis, std::nextafter(to, HUGE_VAL)) + 1, count);
  const int perColumn = 2;
  const bool areFew = !(to > from) || columns <= 0 || end - first <= columns * perColumn;
  std::vector<DrawnPoint> drawn;
  Column column;
  int current = 0;
  for (int row = first; row < end; ++row) {
    const ProfilePoint& point = pointAt(profile, row);
    const double place = placeOf(point, axis);
    const double share = areFew ? 0 : (place - from) / (to - from);
    const int at =
        areFew ? row : static_cast<int>(std::floor(std::clamp(share, -1.0, 2.0) * columns));
    if (at != current || point.isAfterPause) {
      column.flush(drawn);
    }
    current = at;
    column.take(place, point);
  }
  column.flush(drawn);
  return drawn;
}
