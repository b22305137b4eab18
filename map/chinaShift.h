#pragma once

// The published transformation from WGS-84, in which the watch records, to GCJ-02, in which maps of
// mainland China are drawn (Krasovsky 1940 ellipsoid). Every position is shifted, also outside
// China: maps of that kind are asked for as a whole or not at all.
//
// All angles are degrees. Pure functions, any thread.

/// The shifted latitude of the position. Takes latitude first.
double ConvertGDLat(double lat, double lon);

/// The shifted longitude of the position. Takes latitude first. At the poles the change grows
/// without limit.
double ConvertGDLon(double lat, double lon);

/// The offset of the latitude in metres, for x = longitude - 105 and y = latitude - 35.
double transFormLat(double x, double y);

/// The offset of the longitude in metres, for x = longitude - 105 and y = latitude - 35.
double transFormLon(double x, double y);
