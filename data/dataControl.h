#pragma once

#include "data/connection.h"
#include "data/records.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <vector>

struct sqlite3;

/// The activity store: the only code that reads and writes records in "gpsData.db3", which lies
/// beside the bundle. (HeldDatabase opens the file, too, to hold it still as a whole.)
///
/// Make a fresh object for each use, call one or a few operations and drop it. One object belongs
/// to one thread; different threads use objects of their own. Nothing here talks to the user:
/// failures show in the results and in the log.
///
/// The object may be dead: `db` is set but the connection behind it is closed, after the tables had
/// to be created and after a failed open. Everything then answers as on a database error, until
/// close_db() empties `db`.
class dataControl {
 public:
  /// Statements as SQLite takes them, in UTF-8.
  using Statements = std::vector<QByteArray>;

  /// Opens the database beside the main bundle and makes the tables when they are missing.
  dataControl();
  ~dataControl();
  dataControl(const dataControl&) = delete;
  dataControl& operator=(const dataControl&) = delete;

  /// The open connection, or null. Possibly dead, see above: never give it to SQLite unasked.
  sqlite3* db = nullptr;
  /// Run keys of the last run query that found any, in its order.
  QStringList runKeyArray;
  /// Number of track points with a position fix, set by the last point query that found any.
  qint64 trackCount = 0;

  /// `db`, opened when it was empty; null when it cannot be opened.
  sqlite3* open_db();
  /// SQLite's result of closing, or -1 when there was nothing to close. Empties `db` in any case.
  int close_db();
  /// Opens, probes for the tables and creates them when the probe fails. See "dead" above.
  void createDB();

  /// Stores the runs of a download batch, each with its laps and points in one transaction, and
  /// closes the connection. 1 when at least one run was stored, else -1.
  qint32 getSqlArr(const RunDictionary& runMD, const LapDictionary& lapNMD,
                   const PointDictionary& pointNMD, const QStringList& runkeyArr);
  /// Pads with zeros on the left to five characters; empty and longer texts stay as they are.
  static QString returnKeyStr(const QString& number);
  /// Executes the statements in one transaction and closes the connection. 1 or -1.
  qint32 inData(const Statements& statements);
  /// 1 when a run with exactly that start time is stored, 0 when none is, -1 when the question
  /// could not be answered. Needs an open connection.
  qint32 checkRecord(const QString& startTime);
  /// The largest activity number in `table`, 0 when there is none. Leaves the connection open.
  qint64 getMaxCnumber(const QString& table);

  // The INSERT statements of a record. Quotes are not escaped: a text with an apostrophe makes its
  // statement fail.
  static QByteArray runSqlStr(const runData& run);
  static QByteArray lapSqlStr(const lapData& lap);
  static QByteArray trackSqlStr(const trackData& track);
  static QByteArray trackPointSqlStr(const trackPointData& point);

  // Queries. They need the connection that the constructor left open, and answer empty collections
  // when it is not there.

  /// The runs of a period, newest first; a start text "ALL" in any case means all. The bounds are
  /// compared as texts. Distances come back in kilometres. Fills runKeyArray.
  RunDictionary getRunData(const QString& start, const QString& endDateStr);
  LapDictionary getLapData(qint32 number);
  /// Sets trackCount.
  PointDictionary getTrackData(qint32 number);
  /// The start time of the run, "" when there is no such run.
  QString GetTrackName(qint64 number);
  /// 1 when a run started on the day "yyyy-MM-dd", else 0.
  qint32 getRunDataTF(const QString& day);

  /// Deletes a run with its laps, tracks and points, and closes the connection. 1 or -1.
  qint32 deleteOneData(qint64 number);
  /// Deletes everything stored, and closes the connection. 1 or -1.
  qint32 deleteAllData();
  /// Executes any text; leaves the connection open.
  void deleteRecord(const QString& sql);
  /// 100.
  qint32 getInt();

 private:
  /// `db` when it may be given to SQLite, else null.
  sqlite3* usable() const;
  /// A commit is not over before a power cut can no longer undo it. For connections that write.
  void syncEveryCommit();
  qint32 deleteWhere(const QByteArray& condition);

  Connection connection_;  ///< What `db` shows; empty while `db` is empty or dead.
};
