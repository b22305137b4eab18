#pragma once

#include "tools/watchsim/tokyoRoutes.h"

#include <vector>

/// A route as a smooth line that can be followed by distance. Whole numbers only, so that the same
/// distance is the same place on every machine.
class RoutePath {
 public:
  explicit RoutePath(const Route& route);

  /// The place after `distance` centimetres of running from the start: round and round a loop, else
  /// there and back again.
  Place at(qint64 distance) const;
  /// Altitude there, in metres.
  qint32 altitudeAt(qint64 distance) const;

 private:
  qint64 along(qint64 distance) const;

  const Route& route_;
  std::vector<Place> places_;
  std::vector<qint64> distances_;  // of each place from the first one, in centimetres
};
