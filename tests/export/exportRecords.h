#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <pugixml.hpp>

// Records and documents for the export tests. Runs made here have the number 7.

inline constexpr qint64 runNumber = 7;

inline QString recordKey(qsizetype index) {
  return QStringLiteral("%1-%2").arg(runNumber).arg(index);
}

// A point with a fix north and east.
inline trackPointData pointAt(const QString& time, const QString& distance) {
  trackPointData point;
  point.T_PointTime = time;
  point.T_PointDistance = distance;
  point.T_PointLatSign = QStringLiteral("N");
  point.T_PointLatitudeN = QStringLiteral("35.6580");
  point.T_PointLogSign = QStringLiteral("E");
  point.T_PointLongitudeN = QStringLiteral("139.7454");
  point.T_PointHR = QStringLiteral("724");
  point.T_PointSpeed = QStringLiteral("541");
  return point;
}

inline QByteArray fileContent(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file";
}

// The texts of the elements or attributes that an XPath expression finds.
inline QStringList valuesOf(const QByteArray& document, const char* path) {
  pugi::xml_document tree;
  tree.load_buffer(document.constData(), static_cast<size_t>(document.size()));
  QStringList values;
  for (const pugi::xpath_node& found : tree.select_nodes(path)) {
    values.append(QString::fromUtf8(found.attribute() ? found.attribute().value()
                                                      : found.node().text().get()));
  }
  return values;
}
