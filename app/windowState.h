#pragma once

#include <QMap>
#include <QRect>
#include <QString>

#include <vector>

/// What the window keeps from one start to the next: nothing that would be missed when it is lost.
struct WindowState {
  QRect place;  ///< Of the window when it is not maximised; null when not known.
  bool maximised = false;
  QMap<QString, std::vector<int>> sizes;  ///< Of splitters and columns, by their names.

  bool operator==(const WindowState&) const = default;
};

/// "trakko/window.json" below the XDG state home.
QString windowStatePath();
/// What the file holds, as far as it makes sense; a missing or garbled one holds nothing.
WindowState readWindowState(const QString& path);
/// Replaces the file. Failing costs the arrangement, so nobody is told.
void writeWindowState(const QString& path, const WindowState& state);

/// The place for a window that would like to have `wanted`, on a screen with `available` pixels:
/// never larger than these, and inside.
QRect placeWithin(const QRect& wanted, const QRect& available);
