#include "data/pauseFinder.h"

#include "base/text.h"
#include "base/trackTime.h"

bool PauseFinder::isAfterPause(int index, const trackPointData& point) {
  constexpr double shortestPause = 60.0;  // seconds
  const double time = trackTimeValue(point.T_PointTime);
  const bool paused = index > 1 && previous_ && time - *previous_ >= shortestPause &&
                      text::toDouble(point.T_PointSpeed) <= 0.0;
  previous_ = time;
  return paused;
}
