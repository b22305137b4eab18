// What changes the store: downloads and deletions, each in one transaction.

#include "base/text.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "data/insertCache.h"

#include <sqlite3.h>

namespace {

/// The record under `key`; when it is not there, an absent one, which is stored all the same.
template <typename Record>
const Record& recordAt(const QHash<QString, Record>& records, const QString& key) {
  static const Record absentRecord;
  const auto found = records.constFind(key);
  return found == records.cend() ? absentRecord : *found;
}

QString batchKey(const QString& runKey, qint64 number) {
  return runKey + u'-' + dataControl::returnKeyStr(QString::number(number));
}

dataControl::Statements statementsOf(const QString& runKey, const RunDictionary& runs,
                                     const LapDictionary& laps, const PointDictionary& points) {
  const runData& run = recordAt(runs, runKey);
  dataControl::Statements statements{dataControl::runSqlStr(run)};
  for (qint64 j = 1; j <= run.T_RunLap; ++j) {
    statements.push_back(dataControl::lapSqlStr(recordAt(laps, batchKey(runKey, j))));
  }
  for (qint64 j = 1; j <= run.T_RunTrackPoint; ++j) {
    statements.push_back(dataControl::trackPointSqlStr(recordAt(points, batchKey(runKey, j))));
  }
  return statements;
}

void logFailure(sqlite3* connection, const char* statement) {
  qCWarning(dataLog, "%s", statement);
  qCWarning(dataLog, "%s", sqlite3_errmsg(connection));
}

/// Begins a transaction and executes the statements in it. At the first that fails, the
/// transaction is rolled back and the answer is false.
bool executeInTransaction(sqlite3* connection, const dataControl::Statements& statements) {
  if (!execute(connection, "begin transaction;")) {
    return true;  // nothing to roll back; the commit will tell
  }
  InsertCache inserts(connection);
  for (const QByteArray& statement : statements) {
    if (!inserts.execute(statement)) {
      logFailure(connection, statement.constData());
      if (execute(connection, "rollback transaction;")) {
        qCInfo(dataLog, "rollback ok");
      }
      return false;
    }
  }
  return true;
}

}  // namespace

qint32 dataControl::getSqlArr(const RunDictionary& runMD, const LapDictionary& lapNMD,
                              const PointDictionary& pointNMD, const QStringList& runkeyArr) {
  qint32 result = -1;
  for (const QString& key : runkeyArr) {
    if (inData(statementsOf(key, runMD, lapNMD, pointNMD)) == 1) {
      result = 1;
    }
  }
  close_db();
  return result;
}

QString dataControl::returnKeyStr(const QString& number) {
  return number.isEmpty() ? number : number.rightJustified(5, u'0');
}

qint32 dataControl::inData(const Statements& statements) {
  open_db();
  if (db == nullptr || statements.empty()) {
    return -1;
  }
  syncEveryCommit();
  const bool executed = executeInTransaction(usable(), statements);
  // Sent after a rollback and a failed begin, too: with nothing to commit it fails, and its result
  // alone decides.
  const bool committed = execute(usable(), "commit transaction;");
  if (executed && !committed && usable() != nullptr) {
    logFailure(usable(), "commit transaction;");
  }
  close_db();
  return committed ? 1 : -1;
}

qint32 dataControl::deleteOneData(qint64 number) {
  return deleteWhere("T_Cnumber=" + QByteArray::number(number));
}

qint32 dataControl::deleteAllData() {
  return deleteWhere("1=1");
}

qint32 dataControl::deleteWhere(const QByteArray& condition) {
  open_db();
  if (db == nullptr) {
    return -1;
  }
  Statements statements;
  for (const char* table : {"T_RunData", "T_LapData", "T_TrackData", "T_TrackPointData"}) {
    statements.push_back(QByteArrayLiteral("Delete From ") + table + " Where " + condition);
  }
  syncEveryCommit();
  const bool deleted =
      executeInTransaction(usable(), statements) && execute(usable(), "commit transaction;");
  close_db();
  return deleted ? 1 : -1;
}

void dataControl::deleteRecord(const QString& sql) {
  open_db();
  syncEveryCommit();
  execute(usable(), sql.toUtf8().constData());
}
