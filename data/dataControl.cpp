#include "data/dataControl.h"

#include "data/bundle.h"
#include "data/connection.h"
#include "data/schema.h"

#include <QFile>

#include <algorithm>
#include <sqlite3.h>

namespace {

/// How long a statement waits for another connection's lock, in milliseconds. Without it, a
/// calendar that reads while a download is stored makes whole runs fail.
constexpr int busyLimit = 5000;

/// Whether the table of runs can be read. Its first row tells enough.
bool hasRunTable(sqlite3* connection) {
  const PreparedStatement probe = prepare(connection, "select * from T_RunData");
  if (probe == nullptr) {
    return false;
  }
  const int result = sqlite3_step(probe.get());
  return result == SQLITE_ROW || result == SQLITE_DONE;
}

/// All four or none: a file with the first table alone would pass for a complete one for ever. What
/// is not committed goes when the connection is closed.
void makeTables(sqlite3* connection) {
  const auto run = [connection](const char* sql) { return execute(connection, sql); };
  if (run("begin immediate transaction;") &&
      std::all_of(createTables.begin(), createTables.end(), run)) {
    run("commit transaction;");
  }
}

}  // namespace

dataControl::dataControl() {
  createDB();
}

dataControl::~dataControl() {
  close_db();
}

sqlite3* dataControl::open_db() {
  if (db != nullptr) {
    return db;
  }
  const QString path = databasePath(mainBundle());
  if (path.isNull()) {
    return nullptr;
  }
  // Without SQLite's own mutex: a store object belongs to one thread.
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int result = sqlite3_open_v2(QFile::encodeName(path).constData(), &db, flags, nullptr);
  connection_.reset(db);
  if (result != SQLITE_OK) {
    qCWarning(dataLog).noquote() << path << sqlite3_errmsg(db);
    connection_.reset();
    return nullptr;
  }
  sqlite3_busy_timeout(db, busyLimit);
  runNothingStored(db);
  return db;
}

int dataControl::close_db() {
  if (db == nullptr) {
    return -1;
  }
  const int result = usable() == nullptr ? SQLITE_MISUSE : sqlite3_close(connection_.release());
  db = nullptr;
  return result;
}

void dataControl::createDB() {
  open_db();
  if (hasRunTable(usable())) {
    return;
  }
  syncEveryCommit();
  makeTables(usable());
  // `db` stays set: an object that had to make the tables is dead until its close_db().
  connection_.reset();
}

sqlite3* dataControl::usable() const {
  return db == connection_.get() ? db : nullptr;
}

void dataControl::syncEveryCommit() {
  execute(usable(), "PRAGMA synchronous=EXTRA");
}

qint32 dataControl::getInt() {
  return 100;
}
