#include "data/stepLimit.h"

#include "data/connection.h"

#include <sqlite3.h>
#include <sys/stat.h>

namespace {

// A row takes 18 bytes at least, and some 90 steps to be read and sorted.
constexpr qint64 stepsPerByte = 50;
constexpr qint64 stepsOfAnyFile = 10'000'000;

/// Bytes of the write-ahead log, whose pages belong to the database.
qint64 sizeOfLog(sqlite3* connection) {
  const char* const file = sqlite3_db_filename(connection, "main");
  struct stat found {};
  return file != nullptr && stat(sqlite3_filename_wal(file), &found) == 0 ? found.st_size : 0;
}

}  // namespace

void StepLimit::attachTo(sqlite3* connection) {
  if (connection == nullptr) {
    return;
  }
  most_ = stepsOfAnyFile +
          stepsPerByte * (qMax<qint64>(0, fileSize(connection)) + sizeOfLog(connection));
  left_ = most_;
  const auto begin = [](unsigned /*event*/, void* limit, void* /*statement*/, void* /*text*/) {
    auto* const self = static_cast<StepLimit*>(limit);
    self->left_ = self->most_;
    return 0;
  };
  sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, begin, this);
  sqlite3_progress_handler(
      connection, stepsBetween,
      [](void* limit) { return static_cast<StepLimit*>(limit)->isReached() ? 1 : 0; }, this);
}

bool StepLimit::isReached() {
  left_ -= stepsBetween;
  return left_ < 0;
}
