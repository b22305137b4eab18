#include "data/dataControl.h"

#include "data/bundle.h"
#include "data/connection.h"
#include "data/schema.h"
#include "data/schemaCheck.h"

#include <algorithm>
#include <sqlite3.h>

namespace {

/// SQLite's answer to the question for the table of runs. Its first row tells enough.
int probe(sqlite3* connection) {
  const PreparedStatement statement = prepare(connection, "select * from T_RunData");
  return statement != nullptr    ? sqlite3_step(statement.get())
         : connection != nullptr ? sqlite3_errcode(connection)
                                 : SQLITE_MISUSE;
}

/// All four or none: a file with the first table alone would pass for a complete one for ever. What
/// is not committed goes when the connection is closed.
bool makeTables(sqlite3* connection) {
  const auto run = [connection](const char* sql) { return execute(connection, sql); };
  return run("begin immediate transaction;") &&
         std::all_of(createTables.begin(), createTables.end(), run) && run("commit transaction;");
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
  const int result = openDatabase(path, flags, connection_);
  db = connection_.get();
  if (result != SQLITE_OK) {
    qCWarning(dataLog).noquote() << path << sqlite3_errmsg(db);
    connection_.reset();
    return nullptr;
  }
  limits_.attachTo(db);
  return db;
}

int dataControl::close_db() {
  if (db == nullptr) {
    return -1;
  }
  const int result = usable() == nullptr ? SQLITE_MISUSE : sqlite3_close(connection_.release());
  db = nullptr;
  madeTables_ = false;
  return result;
}

void dataControl::createDB() {
  open_db();
  const int result = probe(usable());
  if (result == SQLITE_ROW || result == SQLITE_DONE) {
    return;
  }
  // Anything but a missing table, a lock above all, would keep the tables from being made as well,
  // and has been waited for already.
  if (result == SQLITE_ERROR) {
    prepareToWrite();
    // "If not exists" passes over a view of that name, too.
    madeTables_ =
        makeTables(usable()) && schemaCheck::check(usable()) == schemaCheck::Finding::complete;
  }
  // `db` stays set: an object that had to make the tables is dead until its close_db().
  connection_.reset();
}

sqlite3* dataControl::usable() const {
  return db == connection_.get() ? db : nullptr;
}

void dataControl::prepareToWrite() {
  limits_.letRun();
  execute(usable(), "PRAGMA synchronous=EXTRA");
}

qint32 dataControl::getInt() {
  return 100;
}
