#pragma once

#include "data/bundle.h"
#include "data/connection.h"
#include "data/dataControl.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QtEndian>
#include <sqlite3.h>

/// A folder with a bundle and an empty database in it, which every new store works on, and a
/// connection of its own to see what is really in the file.
struct StoreFolder {
  QTemporaryDir directory;
  QString database = directory.filePath(QStringLiteral("gpsData.db3"));

  StoreFolder() {
    setMainBundle({.path = directory.filePath(QStringLiteral("Trakko.app")),
                   .name = QStringLiteral("Trakko")});
    const dataControl tables;
  }

  Connection connect() const {
    sqlite3* opened = nullptr;
    sqlite3_open(QFile::encodeName(database).constData(), &opened);
    return Connection(opened);
  }

  /// The rows of the query, or one line with the error; columns separated by "|", no value as "-".
  QStringList ask(const char* sql) const { return ask(connect().get(), sql); }

  static QStringList ask(sqlite3* connection, const char* sql) {
    QStringList rows;
    const auto keep = [](void* target, int columns, char** values, char**) {
      QStringList row;
      for (int i = 0; i < columns; ++i) {
        row << (values[i] == nullptr ? QStringLiteral("-") : QString::fromUtf8(values[i]));
      }
      *static_cast<QStringList*>(target) << row.join(u'|');
      return 0;
    };
    if (sqlite3_exec(connection, sql, keep, &rows, nullptr) != SQLITE_OK) {
      rows = {QString::fromUtf8(sqlite3_errmsg(connection))};
    }
    return rows;
  }

  /// Runs, laps, tracks and points stored, as "1|2|0|3".
  QString counts() const {
    return ask("select (select count(*) from T_RunData),(select count(*) from T_LapData),"
               "(select count(*) from T_TrackData),(select count(*) from T_TrackPointData)")
        .value(0);
  }

  /// How many transactions the file has seen: the change counter in its header.
  quint32 commits() const {
    QFile file(database);
    return file.open(QIODevice::ReadOnly) && file.seek(24)
               ? qFromBigEndian<quint32>(file.read(4).constData())
               : 0;
  }
};

/// A download batch: runs with texts and numbers of their own.
struct Batch {
  RunDictionary runs;
  LapDictionary laps;
  PointDictionary points;
  QStringList keys;

  void add(qint64 number, const QString& name, int lapCount, int pointCount) {
    const QString key = QString::asprintf("%02llX", number);
    keys << key;
    runData run;
    run.T_RunStartTime = QString::asprintf("2014-05-%02lld 07:30:05", number);
    run.T_RunName = name;
    run.T_RunLap = lapCount;
    run.T_RunTrackPoint = pointCount;
    run.T_Cnumber = number;
    runs.insert(key, run);
    for (int i = 1; i <= lapCount; ++i) {
      lapData lap;
      lap.T_LapNo = i;
      lap.T_Cnumber = number;
      laps.insert(QStringLiteral("%1-%2").arg(key).arg(i, 5, 10, QChar(u'0')), lap);
    }
    for (int i = 1; i <= pointCount; ++i) {
      trackPointData point;
      point.T_PointTime = QString(300, u'x');
      point.T_Setid = i;
      point.T_Cnumber = number;
      points.insert(QStringLiteral("%1-%2").arg(key).arg(i, 5, 10, QChar(u'0')), point);
    }
  }
  qint32 store(dataControl& data) const { return data.getSqlArr(runs, laps, points, keys); }
  qint32 store() const {
    dataControl data;
    return store(data);
  }
};
