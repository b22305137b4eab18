#pragma once

#include "data/records.h"

#include <optional>
#include <vector>

// The profile of a run: what a curve of it shows. Pure; any thread. Texts of a database that are no
// numbers never get further than here.

/// One point of the curve, with the values that the points table shows of it.
struct ProfilePoint {
  qint64 sequence = 0;    ///< Number of the point within its run, as its key carries it.
  double kilometres = 0;  ///< From the start.
  double clock = 0;       ///< Time of day, seconds.
  /// Where the point stands on the two axes. Unlike the two values above, these never fall.
  double along = 0;    ///< Kilometres.
  double elapsed = 0;  ///< Seconds since the first point, pauses and midnight included.
  // Absent where there is nothing to draw: a runner who stands has no pace, a heart rate of 0 was
  // not measured.
  std::optional<double> speed;      ///< km/h, above 0.
  std::optional<double> heartRate;  ///< Beats per minute, above 0.
  std::optional<double> altitude;   ///< Metres.
  bool isAfterPause = false;        ///< The runner paused before this point.

  bool operator==(const ProfilePoint&) const = default;
};

/// One lap: the points from `first` up to, but not including, `end`.
struct ProfileLap {
  qint32 number = 0;
  int first = 0;
  int end = 0;

  bool operator==(const ProfileLap&) const = default;
};

/// The lowest and the highest value that an axis shows; none when there is nothing to show.
struct ProfileRange {
  double low = 0;
  double high = 0;
};

struct RunProfile {
  std::vector<ProfilePoint> points;  ///< One for each row of the points table, in its order.
  std::vector<ProfileLap> laps;      ///< One for each row of the laps table below the summary.
  std::optional<ProfileRange> speed;
  std::optional<ProfileRange> heartRate;
  std::optional<ProfileRange> altitude;
};

/// The profile of run `number` from its points and laps, keyed as the store answers them.
///
/// Nothing is smoothed. The few percent of speeds that lie far off, such as the first steps after a
/// stop, do not stretch the range of the axis. An altitude that is 0 throughout was not measured.
RunProfile runProfile(const PointDictionary& points, const LapDictionary& laps, qint64 number);
