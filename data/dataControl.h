#pragma once

#include "data/connection.h"
#include "data/connectionLimits.h"
#include "data/fileState.h"
#include "data/records.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <functional>
#include <optional>
#include <vector>

struct sqlite3;
class Rows;

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
  /// Set when a question could not be answered: locked, damaged, no such table. What came back then
  /// only looks like an empty store. Stays set until the caller takes it back.
  bool queryFailed = false;

  // The connection and the tables: dataControl.cpp.

  /// `db`, opened when it was empty; null when it cannot be opened.
  sqlite3* open_db();
  /// SQLite's result of closing, or -1 when there was nothing to close. Empties `db` in any case.
  int close_db();
  /// Opens, probes for the tables and creates them when the probe fails. See "dead" above.
  void createDB();

  // Storing a download: dataControlWrites.cpp. It waits some minutes for the locks of others; all
  // else waits five seconds, and no longer than one wink on the thread of the window.

  /// Stores the runs of a download batch, each with its laps and points in one transaction, and
  /// closes the connection. 1 when at least one run was stored, else -1. Nothing is stored when a
  /// number is larger than runs may have, or when getMaxCnumber() of this object failed: the
  /// numbers that were made from its answer may be taken.
  qint32 getSqlArr(const RunDictionary& runMD, const LapDictionary& lapNMD,
                   const PointDictionary& pointNMD, const QStringList& runkeyArr);
  /// Pads with zeros on the left to five characters; empty and longer texts stay as they are.
  static QString returnKeyStr(const QString& number);
  /// Executes the statements in one transaction and closes the connection. 1 or -1.
  qint32 inData(const Statements& statements);

  // The INSERT statements of a record. Quotes are not escaped: a text with an apostrophe makes its
  // statement fail. dataControlStatements.cpp.

  static QByteArray runSqlStr(const runData& run);
  static QByteArray lapSqlStr(const lapData& lap);
  static QByteArray trackSqlStr(const trackData& track);
  static QByteArray trackPointSqlStr(const trackPointData& point);

  // Queries: dataControlQueries.cpp. They need the connection that the constructor left open, and
  // answer empty collections when it is not there or when SQLite fails, also half way; queryFailed
  // then tells. On the thread of the window they end after some seconds.

  /// The runs of a period, newest first; a start text "ALL" in any case means all. The bounds are
  /// compared as texts. Distances come back in kilometres. Fills runKeyArray.
  RunDictionary getRunData(const QString& start, const QString& endDateStr);
  /// All runs as an earlier allRuns() read them.
  struct KnownRuns {
    std::optional<FileState> state;
    RunDictionary runs;
  };
  /// All runs; they are read only when the file changed since `known`, which is then brought up to
  /// date.
  RunDictionary allRuns(KnownRuns& known);
  LapDictionary getLapData(qint32 number);
  /// Sets trackCount.
  PointDictionary getTrackData(qint32 number);
  /// The start time of the run, "" when there is no such run.
  QString GetTrackName(qint64 number);
  /// 1 when a run started on the day "yyyy-MM-dd", else 0.
  qint32 getRunDataTF(const QString& day);
  /// 1 when a run with exactly that start time is stored, 0 when none is, -1 when the question
  /// could not be answered.
  qint32 checkRecord(const QString& startTime);
  /// How many runs with exactly that start time are stored, that is, how many activity numbers they
  /// have; -1 when the question could not be answered.
  qint64 countRuns(const QString& startTime);
  /// The largest activity number in `table`, 0 when there is none; what is no whole number from 1
  /// to 2^31-1 counts for nothing. Opens the connection when it must, and leaves it open.
  qint64 getMaxCnumber(const QString& table);

  // Deletions and texts of any kind: dataControlWrites.cpp.

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
  /// For connections that write: they run to their end, and a commit is not over before a power cut
  /// can no longer undo it.
  void prepareToWrite();
  /// Whether the answer was read to its end; notes it when not.
  bool answered(const Rows& rows);
  /// Does `work` in a transaction; it answers false when a statement failed. 1 or -1.
  qint32 store(const std::function<bool()>& work);
  qint32 deleteWhere(const QByteArray& condition);

  ConnectionLimits limits_;
  Connection connection_;    ///< What `db` shows; empty while `db` is empty or dead.
  bool madeTables_ = false;  ///< Dead for that reason: the tables are there, and empty.
  bool unsure_ = false;      ///< The largest number could not be found out.
};
