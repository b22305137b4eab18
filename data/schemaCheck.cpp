#include "data/schemaCheck.h"

#include "data/connection.h"
#include "data/schema.h"

#include <QByteArray>
#include <QFile>

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

/// The names of the columns that the table stores, in their order and in lower case; one that is
/// computed instead counts as no name.
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
    const bool stored = sqlite3_column_int(statement.get(), hidden) == 0;
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), name));
    columns.push_back(stored ? QByteArray(text).toLower() : QByteArray());
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
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(QFile::encodeName(path).constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
  const Connection connection(opened);
  runNothingStored(opened);
  return result == SQLITE_OK ? check(opened) : Finding::unreadable;
}

}  // namespace schemaCheck
