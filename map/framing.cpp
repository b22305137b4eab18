#include "map/framing.h"

#include <algorithm>
#include <array>
#include <cmath>

double sumDist(double a, double b, double c, double d) {
  constexpr double shortPi = 3.1415926;  // seven decimals, kept so
  constexpr double radius = 6378245.0;   // metres
  const double parallel = shortPi * (radius * std::cos(((c + d) / 2) * shortPi / 180)) / 180;
  const double dx = std::abs(b - a) * parallel;
  const double dy = std::abs(d - c) * (shortPi * radius / 180);
  return std::sqrt(dx * dx + dy * dy) / 1000;
}

namespace {

struct ZoomStep {
  double limit;  // kilometres
  int zoom;
};

constexpr std::array<ZoomStep, 12> zoomSteps{{{0.01, 21},
                                              {0.02, 20},
                                              {0.05, 19},
                                              {0.1, 18},
                                              {0.2, 17},
                                              {0.5, 16},
                                              {1, 15},
                                              {2, 14},
                                              {3, 13},
                                              {5, 12},
                                              {10, 11},
                                              {20, 10}}};
constexpr int farthestZoom = 9;
constexpr int unknownZoom = 16;

int zoomFor(double extent) {
  if (std::isnan(extent)) {
    return unknownZoom;
  }
  const auto* const step = std::find_if(zoomSteps.begin(), zoomSteps.end(),
                                        [extent](const ZoomStep& s) { return extent <= s.limit; });
  return step == zoomSteps.end() ? farthestZoom : step->zoom;
}

}  // namespace

QString getZoom(const TrackBounds& bounds, double theMaxLat, double theMinLat, double theMaxLon,
                double theMinLon) {
  const double midLat = (theMaxLat + theMinLat) / 2;
  const double midLon = (theMaxLon + theMinLon) / 2;
  const double north = sumDist(midLon, midLon, bounds.maxLat, midLat);
  const double south = sumDist(midLon, midLon, bounds.minLat, midLat);
  const double east = sumDist(bounds.maxLon, midLon, midLat, midLat);
  const double west = sumDist(bounds.minLon, midLon, midLat, midLat);
  const double high = north + south;
  const double wide = east + west;
  return QString::number(zoomFor(high > wide ? high : wide));
}
