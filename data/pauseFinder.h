#pragma once

#include "data/records.h"

#include <optional>

/// Finds where a runner paused, from points in the order of the run: where the watch recorded a
/// point without speed a minute or more after the point before. Pure, any thread.
class PauseFinder {
 public:
  /// Whether there was a pause before this point; to be asked once for each point. `index` counts
  /// the points of the run from 0; no pause is before the first two.
  bool isAfterPause(int index, const trackPointData& point);

 private:
  std::optional<double> previous_;  // seconds of the day
};
