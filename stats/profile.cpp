#include "stats/profile.h"

#include "base/text.h"
#include "base/trackTime.h"
#include "data/pauseFinder.h"
#include "data/recordOrder.h"
#include "stats/units.h"

#include <algorithm>
#include <cmath>

namespace {

using Value = std::optional<double> ProfilePoint::*;

constexpr double secondsPerDay = 86400.0;

/// A number that can be drawn, whatever the text says.
double finite(double value) {
  return std::isfinite(value) ? value : 0.0;
}

std::optional<double> aboveZero(double value) {
  return value > 0 && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// Metres where they lie between the lowest and the highest place on earth.
std::optional<double> altitudeOf(const QString& stored) {
  constexpr double lowest = -500.0;
  constexpr double highest = 9000.0;
  const double metres = text::toDouble(stored);
  return !stored.isEmpty() && metres >= lowest && metres <= highest ? std::optional(metres)
                                                                    : std::nullopt;
}

/// Puts a run's points on the two axes.
class PointReader {
 public:
  ProfilePoint read(qint64 sequence, const trackPointData& stored) {
    ProfilePoint point;
    point.sequence = sequence;
    point.kilometres = finite(units::kilometres(stored.T_PointDistance));
    point.clock = finite(trackTimeValue(stored.T_PointTime));
    point.speed = aboveZero(units::pointKmh(stored.T_PointSpeed));
    point.heartRate = aboveZero(units::pointHeartRate(stored.T_PointHR));
    point.altitude = altitudeOf(stored.T_PointAlti);
    point.isAfterPause = pauses_.isAfterPause(static_cast<int>(sequence - 1), stored);
    place(point);
    return point;
  }

 private:
  void place(ProfilePoint& point) {
    if (!before_) {
      start_ = point.clock;
    } else if (point.clock < before_->clock - secondsPerDay / 2) {
      start_ -= secondsPerDay;  // past midnight
    }
    point.along = std::max(point.kilometres, before_ ? before_->along : 0.0);
    point.elapsed = std::max(point.clock - start_, before_ ? before_->elapsed : 0.0);
    before_ = point;
  }

  PauseFinder pauses_;
  std::optional<ProfilePoint> before_;
  double start_ = 0;  ///< Time of day of the first point, on the day of the point in hand.
};

std::vector<double> sorted(const std::vector<ProfilePoint>& points, Value value) {
  std::vector<double> values;
  for (const ProfilePoint& point : points) {
    if (point.*value) {
      values.push_back(*(point.*value));
    }
  }
  std::sort(values.begin(), values.end());
  return values;
}

std::optional<ProfileRange> wholeRange(const std::vector<ProfilePoint>& points, Value value) {
  const std::vector<double> values = sorted(points, value);
  return values.empty() ? std::nullopt : std::optional(ProfileRange{values.front(), values.back()});
}

/// The range of all but the lowest and the highest few percent, with as much room around it as
/// these need where they are near.
std::optional<ProfileRange> usualRange(const std::vector<ProfilePoint>& points, Value value) {
  constexpr std::size_t oneOf = 25;
  constexpr double room = 0.5;  // of the inner range
  const std::vector<double> values = sorted(points, value);
  if (values.empty()) {
    return std::nullopt;
  }
  const std::size_t cut = values.size() / oneOf;
  const ProfileRange inner{values[cut], values[values.size() - 1 - cut]};
  const double margin = (inner.high - inner.low) * room;
  return ProfileRange{std::max(values.front(), inner.low - margin),
                      std::min(values.back(), inner.high + margin)};
}

/// Finds where laps end: at their distance, or at their time where the run has no distance.
class LapCutter {
 public:
  explicit LapCutter(const std::vector<ProfilePoint>& points) : points_(points) {
    moving_.reserve(points.size());
    double paused = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
      paused += points[i].isAfterPause ? points[i].elapsed - points[i - 1].elapsed : 0.0;
      moving_.push_back(points[i].elapsed - paused);
    }
    byTime_ = points.empty() || points.back().along <= 0;
  }

  ProfileLap next(const lapData& lap) {
    kilometres_ += finite(units::kilometres(lap.T_LapDistance));
    seconds_ += finite(trackTimeValue(lap.T_LapTime));
    const int first = end_;
    end_ = std::max(end_, byTime_ ? indexAfter(moving_, seconds_) : indexAfter(kilometres_));
    return {lap.T_LapNo, first, end_};
  }

 private:
  static int indexAfter(const std::vector<double>& values, double limit) {
    return static_cast<int>(std::upper_bound(values.begin(), values.end(), limit) - values.begin());
  }
  int indexAfter(double kilometres) const {
    const auto found = std::upper_bound(
        points_.begin(), points_.end(), kilometres,
        [](double limit, const ProfilePoint& point) { return limit < point.along; });
    return static_cast<int>(found - points_.begin());
  }

  const std::vector<ProfilePoint>& points_;
  std::vector<double> moving_;  ///< Seconds on the move, by point.
  bool byTime_ = false;
  double kilometres_ = 0;
  double seconds_ = 0;
  int end_ = 0;
};

}  // namespace

RunProfile runProfile(const PointDictionary& points, const LapDictionary& laps, qint64 number) {
  RunProfile profile;
  PointReader reader;
  profile.points.reserve(static_cast<std::size_t>(points.size()));
  qint64 sequence = 0;
  // The point keys carry the number as a 32-bit one, unlike the lap keys.
  for (const trackPointData* point : inOrder(points, static_cast<qint32>(number))) {
    ++sequence;
    if (point != nullptr) {
      profile.points.push_back(reader.read(sequence, *point));
    }
  }
  LapCutter cutter(profile.points);
  for (const lapData* lap : inOrder(laps, number)) {
    if (lap != nullptr) {
      profile.laps.push_back(cutter.next(*lap));
    }
  }
  profile.speed = usualRange(profile.points, &ProfilePoint::speed);
  profile.heartRate = wholeRange(profile.points, &ProfilePoint::heartRate);
  profile.altitude = wholeRange(profile.points, &ProfilePoint::altitude);
  if (profile.altitude && profile.altitude->low == 0 && profile.altitude->high == 0) {
    profile.altitude = std::nullopt;
  }
  return profile;
}
