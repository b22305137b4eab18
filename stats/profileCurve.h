#pragma once

#include "stats/profile.h"

#include <vector>

// What is drawn of a profile, and where. Pure; any thread.

enum class ProfileAxis { Distance, Time };

/// Where a point stands on the axis: kilometres or seconds.
double placeOf(const ProfilePoint& point, ProfileAxis axis);

/// The point nearest to a place on the axis; -1 when the profile has none. Of several at the same
/// place, the first.
int nearestPoint(const RunProfile& profile, ProfileAxis axis, double place);

/// What is drawn at one place of the axis.
struct DrawnPoint {
  double place = 0;
  std::optional<double> speed;
  std::optional<double> heartRate;
  std::optional<double> altitude;
  bool isAfterPause = false;  ///< No line leads here.
};

/// What is drawn where the stretch of the axis `from` to `to` is shown in `columns` columns of
/// pixels. Of the points in one column two are left, at its first and its last place, which hold
/// the lowest and the highest value of each curve, in the order in which the runner had them: every
/// peak stays in sight. All points where they are few, and the next ones outside on both sides.
std::vector<DrawnPoint> drawnPoints(const RunProfile& profile, ProfileAxis axis, double from,
                                    double to, int columns);
