#pragma once

#include <QString>

#include <optional>

struct sqlite3;

/// Where the laps and points of each run lie in the database, so that a click on a run reads only
/// there. The tables have no index, and a run's rows lie together.
///
/// What was found is kept for the whole process, for one state of one file; whatever is stored or
/// changed since, by any program, makes it void. All functions: any thread.
namespace pointLocator {

enum class Table { laps, points };

/// The smallest and largest row id of a run; larger than the second when it has no row.
struct Range {
  qint64 first;
  qint64 last;
};

/// Reads both tables once, which takes some seconds for millions of points: for a thread of its
/// own, after the runs were loaded and after each change. Others may write meanwhile; then, and for
/// a file whose tables are not made as the store makes them, it gives up with false.
bool locate(const QString& database);

/// The range in which all rows of the run lie; nothing when it is not known for what the connection
/// reads. The connection must keep writers out, see Reading.
std::optional<Range> rangeOf(sqlite3* connection, Table table, qint32 number);

}  // namespace pointLocator
