#include "data/pointLocator.h"

#include "data/connection.h"
#include "data/fileState.h"
#include "data/schema.h"
#include "data/stepLimit.h"

#include <QByteArray>

#include <array>
#include <limits>
#include <memory>
#include <mutex>
#include <sqlite3.h>
#include <unordered_map>

namespace pointLocator {

namespace {

/// Rows read at a time: for some hundredths of a second, so that nobody waits long to write.
constexpr int rowsAtOnce = 50000;
/// A file with more runs is no runner's, and not worth the memory.
constexpr std::size_t mostRuns = 1'000'000;

using Ranges = std::unordered_map<qint64, Range>;

struct Located {
  FileState state;
  std::array<Ranges, 2> tables;
};

std::mutex mutex;
std::shared_ptr<const Located> kept;  // guarded by `mutex`

const char* nameOf(Table table) {
  return table == Table::laps ? "T_LapData" : "T_TrackPointData";
}

/// Whether the table was made by the store's own statement, so that `ID` is the row's id and all
/// rows of a number have values that read as this number.
bool isOurs(sqlite3* connection, Table table) {
  constexpr std::size_t lapTable = 1;
  constexpr std::size_t pointTable = 3;
  QByteArray ours(createTables[table == Table::laps ? lapTable : pointTable]);
  ours = ours.trimmed().replace("IF NOT EXISTS ", "").chopped(1);
  const PreparedStatement statement =
      prepare(connection, "select sql from sqlite_master where type='table' and name=?");
  sqlite3_bind_text(statement.get(), 1, nameOf(table), -1, SQLITE_STATIC);
  return sqlite3_step(statement.get()) == SQLITE_ROW &&
         ours == reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
}

/// Whether the value in the first column of the row, read as a number, is one that a run is asked
/// for by.
bool readNumber(sqlite3_stmt* row, qint64& number) {
  using Limits = std::numeric_limits<qint32>;
  const double value = sqlite3_column_double(row, 1);
  number = sqlite3_column_int64(row, 1);
  return sqlite3_column_type(row, 1) != SQLITE_NULL && value >= Limits::min() &&
         value <= Limits::max() && static_cast<double>(number) == value;
}

enum class Progress { more, finished, failed };

/// Takes the next rows behind the row id `last`, which moves on.
Progress readSome(sqlite3_stmt* statement, Ranges& ranges, qint64& last) {
  sqlite3_bind_int64(statement, 1, last);
  auto inHand = ranges.end();
  int rows = 0;
  int result = sqlite3_step(statement);
  for (; result == SQLITE_ROW; result = sqlite3_step(statement)) {
    const qint64 id = sqlite3_column_int64(statement, 0);
    if (id <= last) {
      return Progress::failed;  // pages that lead in circles
    }
    ++rows;
    last = id;
    qint64 number = 0;
    if (!readNumber(statement, number)) {
      continue;
    }
    if (inHand == ranges.end() || inHand->first != number) {
      inHand = ranges.try_emplace(number, Range{last, last}).first;
    }
    inHand->second.last = last;
  }
  sqlite3_reset(statement);
  if (result != SQLITE_DONE || ranges.size() > mostRuns) {
    return Progress::failed;
  }
  return rows < rowsAtOnce ? Progress::finished : Progress::more;
}

/// Reads the whole table as it was at `state`.
bool readTable(sqlite3* connection, Table table, const FileState& state, Ranges& ranges) {
  // A value of another kind, in a stranger's file, matches the number that it reads as.
  const QByteArray sql = QByteArrayLiteral("Select ID,Cast(T_Cnumber As Numeric) From ") +
                         nameOf(table) + " Where ID>? Order by ID Limit " +
                         QByteArray::number(rowsAtOnce);
  const PreparedStatement statement = prepare(connection, sql.constData());
  qint64 last = std::numeric_limits<qint64>::min();
  Progress progress = Progress::more;
  while (progress == Progress::more) {
    const Reading reading(connection);
    if (!reading || fileState(connection) != state) {
      return false;
    }
    progress = readSome(statement.get(), ranges, last);
  }
  return progress == Progress::finished;
}

std::optional<FileState> stateOf(sqlite3* connection) {
  const Reading reading(connection);
  const bool known =
      reading && isOurs(connection, Table::laps) && isOurs(connection, Table::points);
  return known ? fileState(connection) : std::nullopt;
}

}  // namespace

bool locate(const QString& database) {
  StepLimit steps;
  Connection connection;
  const int result = openDatabase(database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, connection);
  sqlite3* const opened = connection.get();
  steps.attachTo(opened);
  const std::optional<FileState> state = result == SQLITE_OK ? stateOf(opened) : std::nullopt;
  if (!state) {
    return false;
  }
  const auto located = std::make_shared<Located>(Located{*state, {}});
  for (const Table table : {Table::laps, Table::points}) {
    if (!readTable(opened, table, *state, located->tables[static_cast<std::size_t>(table)])) {
      return false;
    }
  }
  const std::lock_guard lock(mutex);
  kept = located;
  return true;
}

std::optional<Range> rangeOf(sqlite3* connection, Table table, qint32 number) {
  std::shared_ptr<const Located> located;
  {
    const std::lock_guard lock(mutex);
    located = kept;
  }
  if (located == nullptr || fileState(connection) != located->state) {
    return std::nullopt;
  }
  const Ranges& ranges = located->tables[static_cast<std::size_t>(table)];
  const auto found = ranges.find(number);
  return found == ranges.end() ? Range{0, -1} : found->second;
}

}  // namespace pointLocator
