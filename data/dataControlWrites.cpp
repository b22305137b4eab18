// What changes the store: downloads and deletions, each in one transaction.

#include "base/text.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "data/databaseUse.h"
#include "data/recordWriter.h"

#include <algorithm>
#include <limits>
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

/// Stores one run of a batch with its laps and points, until a statement fails.
bool storeRun(sqlite3* connection, const QString& runKey, const RunDictionary& runs,
              const LapDictionary& laps, const PointDictionary& points) {
  RecordWriter writer(connection);
  const runData& run = recordAt(runs, runKey);
  bool stored = writer.store(run);
  for (qint64 j = 1; stored && j <= run.T_RunLap; ++j) {
    stored = writer.store(recordAt(laps, batchKey(runKey, j)));
  }
  for (qint64 j = 1; stored && j <= run.T_RunTrackPoint; ++j) {
    stored = writer.store(recordAt(points, batchKey(runKey, j)));
  }
  return stored;
}

/// Executes the statements up to the first that fails.
bool executeAll(sqlite3* connection, const dataControl::Statements& statements) {
  for (const QByteArray& statement : statements) {
    if (!execute(connection, statement.constData())) {
      logFailure(connection, statement.constData());
      return false;
    }
  }
  return true;
}

/// Begins a transaction and does the work in it. When a statement of the work fails, the
/// transaction is rolled back and the answer is false.
bool doInTransaction(sqlite3* connection, const std::function<bool()>& work) {
  if (!execute(connection, "begin transaction;") || work()) {
    return true;  // where it could not begin there is nothing to roll back; the commit will tell
  }
  if (execute(connection, "rollback transaction;")) {
    qCInfo(dataLog, "rollback ok");
  }
  return false;
}

/// Larger ones cannot be asked for or deleted by number, and points hold their lower half alone.
bool isTooLarge(qint64 number) {
  return number > std::numeric_limits<qint32>::max();
}

}  // namespace

qint32 dataControl::getSqlArr(const RunDictionary& runMD, const LapDictionary& lapNMD,
                              const PointDictionary& pointNMD, const QStringList& runkeyArr) {
  const bool tooLarge = std::any_of(runkeyArr.begin(), runkeyArr.end(), [&](const QString& key) {
    return isTooLarge(recordAt(runMD, key).T_Cnumber);
  });
  if (tooLarge || unsure_) {
    qCWarning(dataLog, "nothing stored: %s", tooLarge ? "number too large" : "numbers unknown");
    close_db();
    return -1;
  }
  qint32 result = -1;
  for (const QString& key : runkeyArr) {
    qCInfo(dataLog).noquote() << text::shown(recordAt(runMD, key).T_RunStartTime);
    open_db();
    if (store([&] { return storeRun(usable(), key, runMD, lapNMD, pointNMD); }) == 1) {
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
  if (statements.empty()) {
    return -1;
  }
  return store([&] { return executeAll(usable(), statements); });
}

qint32 dataControl::store(const std::function<bool()>& work) {
  if (db == nullptr) {
    return -1;
  }
  limits_.waitForBackups();
  prepareToWrite();
  const bool done = doInTransaction(usable(), work);
  // Sent after a rollback and a failed begin, too: with nothing to commit it fails, and its result
  // alone decides.
  const bool committed = execute(usable(), "commit transaction;");
  if (done && !committed && usable() != nullptr) {
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
  // Not in the middle of storing or restoring, nor after a wait: the user looks at the window.
  const databaseUse::Turn turn = databaseUse::ifFree();
  open_db();
  if (db == nullptr || !turn) {
    close_db();
    return -1;
  }
  Statements statements;
  for (const char* table : {"T_RunData", "T_LapData", "T_TrackData", "T_TrackPointData"}) {
    statements.push_back(QByteArrayLiteral("Delete From ") + table + " Where " + condition);
  }
  prepareToWrite();
  const bool deleted =
      doInTransaction(usable(), [&] { return executeAll(usable(), statements); }) &&
      execute(usable(), "commit transaction;");
  close_db();
  return deleted ? 1 : -1;
}

void dataControl::deleteRecord(const QString& sql) {
  open_db();
  prepareToWrite();
  execute(usable(), sql.toUtf8().constData());
}
