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

/// The points to draw, in order, where the stretch of the axis `from` to `to` is shown in `columns`
/// columns of pixels: of each column the first and the last point and those with the lowest and the
/// highest value of each curve, so that every peak stays in sight; both points beside a pause; and
/// the next points outside on both sides. All of them where they are few.
std::vector<int> profileRows(const RunProfile& profile, ProfileAxis axis, double from, double to,
                             int columns);
