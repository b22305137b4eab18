#pragma once

#include "data/records.h"
#include "tests/files.h"

#include <QStringList>

#include <pugixml.hpp>

// Records and documents for the export tests. Runs made here have the number 7.

inline constexpr qint64 runNumber = 7;
inline const QString start = "2014-05-01 07:30:00";

inline QString recordKey(qsizetype index) {
  return QString("%1-%2").arg(runNumber).arg(index);
}

// A point with a fix north and east.
inline trackPointData pointAt(const QString& time, const QString& distance) {
  trackPointData point;
  point.T_PointTime = time;
  point.T_PointDistance = distance;
  point.T_PointLatSign = "N";
  point.T_PointLatitudeN = "35.6580";
  point.T_PointLogSign = "E";
  point.T_PointLongitudeN = "139.7454";
  point.T_PointHR = "724";
  point.T_PointSpeed = "541";
  return point;
}

// Laps by their distances; "-" is a lap missing from the dictionary, but counted.
inline LapDictionary lapsOf(const QString& distances, const QString& time = "00:05:12.34") {
  LapDictionary laps;
  const QStringList list = distances.split(' ', Qt::SkipEmptyParts);
  for (qsizetype i = 1; i <= list.size(); ++i) {
    lapData& lap = laps[list[i - 1] == u"-" ? QString("elsewhere %1").arg(i) : recordKey(i)];
    lap.T_LapTime = time;
    lap.T_LapDistance = list[i - 1];
    lap.T_LapMaxSpeed = "143";
    lap.T_LapCal = "712345";
  }
  return laps;
}

// The texts of the elements or attributes that an XPath expression finds.
inline QStringList valuesOf(const QByteArray& document, const char* path) {
  pugi::xml_document tree;
  tree.load_buffer(document.constData(), static_cast<size_t>(document.size()));
  QStringList values;
  for (const pugi::xpath_node& found : tree.select_nodes(path)) {
    values.append(found.attribute() ? found.attribute().value() : found.node().text().get());
  }
  return values;
}
