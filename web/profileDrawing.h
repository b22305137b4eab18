#pragma once

#include "stats/profileCurve.h"

#include <QJsonObject>

// What the page of the profile is told, as JSON values that hold nothing but numbers and what the
// program makes of them. Pure; any thread.

/// The curves of a run between two places of the axis, in `columns` columns of pixels. A pause is a
/// point without values.
QJsonObject profileDrawing(const RunProfile& run, ProfileAxis axis, double from, double to,
                           int columns);

/// The cursor on a point, with the same texts as its row of the points table.
QJsonObject profileCursor(const ProfilePoint& point, ProfileAxis axis);
