#pragma once

#include <QString>

struct sqlite3;

/// Whether a database has what the store works on: the four tables, as tables and not as views or
/// virtual tables, each with all columns in their places and none that is computed. More columns
/// behind them and more tables do no harm.
namespace schemaCheck {

enum class Finding {
  complete,
  tablesMissing,  ///< A database, perhaps an empty one, without these tables or columns.
  noDatabase,     ///< Not a database, cut or damaged, so that not even its schema can be read.
  unreadable,     ///< The question could not be asked: locked, no permission, no such file.
};

/// Looks through a connection, which may be null (unreadable). Reads the schema alone.
Finding check(sqlite3* connection);

/// Looks through a connection of its own that writes nothing, waits for nobody and runs nothing
/// that is in the file. A journal beside the file that has to be worked off first makes it
/// unreadable.
Finding check(const QString& path);

}  // namespace schemaCheck
