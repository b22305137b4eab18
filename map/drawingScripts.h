#pragma once

#include <QString>

/// A complete script that sets up the AMap page's map and draws a track on it, from the point
/// expression and the break list of a TrackOverlay. Pieces are cut one point tighter than the
/// page's own MapPolyline does.
QString setGDMapPoly(const QString& polyStr, const QString& breakPointStr);

/// A fixed script that reports "set Poly" in the page's title; both arguments are ignored.
QString setMapPoly(const QString& polyStr, const QString& breakPointStr);
