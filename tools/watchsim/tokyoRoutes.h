#pragma once

#include <QtGlobal>

#include <span>

/// A place in millionths of a degree, north and east.
struct Place {
  qint32 latitude = 0;
  qint32 longitude = 0;
};

/// A well-known running course.
struct Route {
  const char* name;  ///< At most seven characters, as the watch shows it.
  bool isLoop;       ///< Run round and round, else there and back again.
  qint32 lowest;     ///< Altitude in metres.
  qint32 highest;
  std::span<const Place> places;  ///< Along the way, without the repeated first place of a loop.
};

/// Courses in Tokyo.
std::span<const Route> tokyoRoutes();
