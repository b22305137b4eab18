#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QXmlStreamReader>

// Records and documents for the export tests. All runs have the number 7.

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

inline PointDictionary pointDictionary(const QList<trackPointData>& points) {
  PointDictionary result;
  for (const trackPointData& point : points) {
    result[recordKey(result.size() + 1)] = point;
  }
  return result;
}

// The texts of all elements, or the values of all attributes ("Lap@StartTime"), whose path in the
// document ends with `path`. Fails the test when the document is not well-formed.
inline QStringList valuesOf(const QByteArray& document, const QString& path) {
  const QString wanted = u'/' + path.section(u'@', 0, 0);
  const QString attribute = path.section(u'@', 1);
  QXmlStreamReader reader(document);
  QString at;
  QStringList values;
  while (!reader.atEnd()) {
    reader.readNext();
    if (reader.isEndElement()) {
      at.truncate(at.lastIndexOf(u'/'));
    } else if (reader.isStartElement()) {
      at += u'/' + reader.qualifiedName().toString();
      if (at.endsWith(wanted)) {
        values.append(attribute.isEmpty() ? QStringLiteral("")
                                          : reader.attributes().value(attribute).toString());
      }
    } else if (reader.isCharacters() && attribute.isEmpty() && at.endsWith(wanted)) {
      values.last() += reader.text();
    }
  }
  if (reader.hasError()) {
    QTest::qFail(qPrintable(reader.errorString()), __FILE__, __LINE__);
  }
  return values;
}

// The file of that name among the fixtures.
inline QByteArray fixture(const char* name) {
  QFile file(QStringLiteral(TRAKKO_FIXTURES "/export/") + QLatin1String(name));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
