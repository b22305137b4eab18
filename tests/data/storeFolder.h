#pragma once

#include "data/bundle.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "tests/files.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <sqlite3.h>

inline Connection connectTo(const QString& database) {
  sqlite3* opened = nullptr;
  sqlite3_open(QFile::encodeName(database).constData(), &opened);
  return Connection(opened);
}

/// The rows that the statements answer, separated by blanks, or the error; columns separated by
/// "|", no value as "-".
inline QString ask(sqlite3* connection, const char* sql) {
  QString rows;
  const auto keep = [](void* target, int columns, char** values, char**) {
    for (int i = 0; i < columns; ++i) {
      *static_cast<QString*>(target) += QString(i == 0 ? " " : "|") + (values[i] ? values[i] : "-");
    }
    return 0;
  };
  const int result = sqlite3_exec(connection, sql, keep, &rows, nullptr);
  return result == SQLITE_OK ? rows.mid(1) : sqlite3_errmsg(connection);
}

/// Through a connection of its own, to see what is really in the file.
inline QString ask(const QString& database, const char* sql) {
  return ask(connectTo(database).get(), sql);
}

/// A folder with a bundle and an empty database in it, which every new store works on.
struct StoreFolder {
  QTemporaryDir directory;
  QString database = in("gpsData.db3");

  StoreFolder() {
    setMainBundle({.path = in("Trakko.app"), .name = "Trakko"});
    const dataControl tables;
  }

  QString in(const QString& name) const { return directory.filePath(name); }
  QString ask(const QByteArray& sql) const { return ::ask(database, sql.constData()); }
  /// Runs, laps, tracks and points stored, as "1|2|0|3".
  QString counts() const {
    return ask(
        "select (select count(*) from T_RunData),(select count(*) from T_LapData),"
        "(select count(*) from T_TrackData),(select count(*) from T_TrackPointData)");
  }
  /// How many transactions the file has seen: the change counter in its header.
  quint32 commits() const {
    QFile file(database);
    file.open(QIODevice::ReadOnly);
    return qFromBigEndian<quint32>(file.read(28).leftJustified(28, 0).constData() + 24);
  }
};

/// A download batch: runs with times and numbers of their own, the times not in the numbers' order.
struct Batch {
  RunDictionary runs;
  LapDictionary laps;
  PointDictionary points;
  QStringList keys;

  void add(qint64 number, const QString& name, int lapCount, int pointCount) {
    keys << QString::asprintf("%02llX", number);
    runData& run = runs[keys.last()];
    run.T_RunStartTime = QString::asprintf("2014-05-%02lld 07:30:05", number % 29);
    run.T_RunName = name;
    run.T_RunLap = lapCount;
    run.T_RunTrackPoint = pointCount;
    run.T_Cnumber = number;
    for (int i = 1; i <= lapCount; ++i) {
      lapData& lap = laps[keys.last() + QString::asprintf("-%05d", i)];
      lap.T_LapNo = i;
      lap.T_Cnumber = number;
    }
    for (int i = 1; i <= pointCount; ++i) {
      trackPointData& point = points[keys.last() + QString::asprintf("-%05d", i)];
      point.T_PointTime = QString(300, 'x');
      point.T_Setid = i;
      point.T_Cnumber = number;
    }
  }
  qint32 store(dataControl& data) const { return data.getSqlArr(runs, laps, points, keys); }
  qint32 store() const {
    dataControl data;
    return store(data);
  }
};
