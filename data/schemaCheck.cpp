#include "data/schemaCheck.h"

#include "data/connection.h"
#include "data/schema.h"
#include "data/stepLimit.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <sqlite3.h>
#include <vector>

namespace schemaCheck {

namespace {

constexpr std::array tables{"T_RunData", "T_LapData", "T_TrackData", "T_TrackPointData"};

Finding findingOf(int result) {
  switch (result & 0xff) {
    case SQLITE_DONE:
      return Finding::complete;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_INTERRUPT:  // its pages lead in circles
      return Finding::noDatabase;
    case SQLITE_ERROR:  // compiled, but not with what this database has
      return Finding::tablesMissing;
    default:
      return Finding::unreadable;
  }
}

/// Whether the table has pages in the file. A view or a virtual table has none: reading it would
/// run what a stranger wrote.
Finding isTable(sqlite3* connection, const char* table) {
  const PreparedStatement statement =
      prepare(connection,
              "select 1 from main.sqlite_master where type='table' and rootpage>0 and "
              "name=? collate nocase");
  if (statement == nullptr) {
    return findingOf(sqlite3_errcode(connection));
  }
  sqlite3_bind_text(statement.get(), 1, table, -1, SQLITE_STATIC);
  const int result = sqlite3_step(statement.get());
  return result == SQLITE_DONE  ? Finding::tablesMissing
         : result == SQLITE_ROW ? Finding::complete
                                : findingOf(result);
}

/// The names of the table's columns, in their order and in lower case. A table with a column that
/// is computed when it is read is not one of ours.
Finding readColumns(sqlite3* connection, const QByteArray& table,
                    std::vector<QByteArray>& columns) {
  constexpr int name = 1;
  constexpr int hidden = 6;
  const QByteArray sql = "PRAGMA main.table_xinfo(" + table + ')';
  const PreparedStatement statement = prepare(connection, sql.constData());
  if (statement == nullptr) {
    return findingOf(sqlite3_errcode(connection));
  }
  int result = sqlite3_step(statement.get());
  for (; result == SQLITE_ROW; result = sqlite3_step(statement.get())) {
    if (sqlite3_column_int(statement.get(), hidden) != 0) {
      return Finding::tablesMissing;
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), name));
    columns.push_back(QByteArray(text).toLower());
  }
  return findingOf(result);
}

/// A database as the store makes it.
Connection reference() {
  sqlite3* opened = nullptr;
  sqlite3_open(":memory:", &opened);
  for (const char* sql : createTables) {
    execute(opened, sql);
  }
  return Connection(opened);
}

}  // namespace

Finding check(sqlite3* connection) {
  if (connection == nullptr) {
    return Finding::unreadable;
  }
  const Connection ours = reference();
  for (const char* table : tables) {
    std::vector<QByteArray> expected;
    std::vector<QByteArray> found;
    readColumns(ours.get(), table, expected);
    Finding finding = isTable(connection, table);
    if (finding == Finding::complete) {
      finding = readColumns(connection, table, found);
    }
    if (finding != Finding::complete) {
      return finding;
    }
    if (found.size() < expected.size() ||
        !std::equal(expected.begin(), expected.end(), found.begin())) {
      return Finding::tablesMissing;
    }
  }
  return Finding::complete;
}

Finding check(const QString& path) {
  StepLimit steps;
  Connection connection;
  const int result = openDatabase(path, SQLITE_OPEN_READONLY, connection);
  steps.attachTo(connection.get());
  return result == SQLITE_OK ? check(connection.get()) : Finding::unreadable;
}

}  // namespace schemaCheck
