#include "map/chinaShift.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double semiMajorAxis = 6378245.0;                   // metres
constexpr double eccentricitySquared = 0.006693421622965943;  // of the Krasovsky 1940 ellipsoid
constexpr double meridianConstant = 6335552.717000426;        // a (1 - e²), metres
constexpr double originLat = 35.0;
constexpr double originLon = 105.0;

/// 1 - e² sin²(latitude), the common term of both radii of curvature.
double curvatureTerm(double lat) {
  const double sine = std::sin(lat / 180.0 * pi);
  return 1 - eccentricitySquared * sine * sine;
}

}  // namespace

// The order of the operations decides the last bits of the results; keep it.

double transFormLat(double x, double y) {
  double r = -100.0 + 2.0 * x + 3.0 * y + 0.2 * y * y + 0.1 * x * y + 0.2 * std::sqrt(std::abs(x));
  r += (20.0 * std::sin(6.0 * x * pi) + 20.0 * std::sin(2.0 * x * pi)) * 2.0 / 3.0;
  r += (20.0 * std::sin(y * pi) + 40.0 * std::sin(y / 3.0 * pi)) * 2.0 / 3.0;
  r += (160.0 * std::sin(y / 12.0 * pi) + 320.0 * std::sin(y * pi / 30.0)) * 2.0 / 3.0;
  return r;
}

double transFormLon(double x, double y) {
  double r = 300.0 + x + 2.0 * y + 0.1 * x * x + 0.1 * x * y + 0.1 * std::sqrt(std::abs(x));
  r += (20.0 * std::sin(6.0 * x * pi) + 20.0 * std::sin(2.0 * x * pi)) * 2.0 / 3.0;
  r += (20.0 * std::sin(x * pi) + 40.0 * std::sin(x / 3.0 * pi)) * 2.0 / 3.0;
  r += (150.0 * std::sin(x / 12.0 * pi) + 300.0 * std::sin(x / 30.0 * pi)) * 2.0 / 3.0;
  return r;
}

double ConvertGDLat(double lat, double lon) {
  const double d = transFormLat(lon - originLon, lat - originLat);
  const double m = curvatureTerm(lat);
  return lat + (d * 180.0) / ((meridianConstant / (m * std::sqrt(m))) * pi);
}

double ConvertGDLon(double lat, double lon) {
  const double d = transFormLon(lon - originLon, lat - originLat);
  const double rad = lat / 180.0 * pi;
  const double s = std::sqrt(curvatureTerm(lat));
  return lon + (d * 180.0) / ((semiMajorAxis / s) * std::cos(rad) * pi);
}
