#include "tools/watchsim/routePath.h"

#include <algorithm>
#include <cmath>

namespace {

Place between(const Place& from, const Place& to, qint64 part, qint64 whole) {
  const auto mix = [part, whole](qint64 a, qint64 b) {
    return static_cast<qint32>(a + (b - a) * part / whole);
  };
  return {mix(from.latitude, to.latitude), mix(from.longitude, to.longitude)};
}

/// Cuts every corner of the line once (Chaikin's algorithm); the ends of an open line stay.
std::vector<Place> withCornersCut(const std::vector<Place>& places) {
  std::vector<Place> result{places.front()};
  for (size_t i = 0; i + 1 < places.size(); ++i) {
    result.push_back(between(places[i], places[i + 1], 1, 4));
    result.push_back(between(places[i], places[i + 1], 3, 4));
  }
  result.push_back(places.back());
  return result;
}

/// Centimetres between two places of Tokyo, where a millionth of a degree is 11.1 cm northwards and
/// 9.03 cm eastwards. The root of a whole number that a double holds exactly is the same
/// everywhere.
qint64 distanceBetween(const Place& from, const Place& to) {
  const qint64 north = (to.latitude - from.latitude) * qint64{1110} / 100;
  const qint64 east = (to.longitude - from.longitude) * qint64{903} / 100;
  return static_cast<qint64>(std::sqrt(static_cast<double>(north * north + east * east)));
}

}  // namespace

RoutePath::RoutePath(const Route& route)
    : route_(route), places_(route.places.begin(), route.places.end()) {
  if (route.isLoop) {
    places_.push_back(places_.front());
  }
  for (int round = 0; round < 3; ++round) {
    places_ = withCornersCut(places_);
  }
  distances_.push_back(0);
  for (size_t i = 1; i < places_.size(); ++i) {
    distances_.push_back(distances_.back() + distanceBetween(places_[i - 1], places_[i]));
  }
}

qint64 RoutePath::along(qint64 distance) const {
  const qint64 length = distances_.back();
  if (route_.isLoop) {
    return distance % length;
  }
  const qint64 round = distance % (2 * length);
  return round < length ? round : 2 * length - round;
}

Place RoutePath::at(qint64 distance) const {
  const qint64 position = along(distance);
  const auto next = std::upper_bound(distances_.begin() + 1, distances_.end() - 1, position);
  const auto index = static_cast<size_t>(next - distances_.begin());
  const qint64 before = distances_[index - 1];
  const qint64 step = std::max<qint64>(*next - before, 1);
  return between(places_[index - 1], places_[index], position - before, step);
}

qint32 RoutePath::altitudeAt(qint64 distance) const {
  // One rise and one fall along the way, flat at both ends.
  const qint64 half = std::max<qint64>(distances_.back() / 2, 1);
  const qint64 position = along(distance);
  const qint64 part = std::min(position < half ? position : 2 * half - position, half);
  const qint64 rise = 3 * part * part / half - 2 * part * part / half * part / half;
  return route_.lowest + static_cast<qint32>((route_.highest - route_.lowest) * rise / half);
}
