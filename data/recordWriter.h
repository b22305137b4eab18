#pragma once

#include "data/connection.h"
#include "data/rowValues.h"

/// Stores records, each kind with a statement that is compiled once; a run has thousands of points.
/// The rows, the failures and the log are those of executing the records' statements as texts. Must
/// go before the connection is closed.
class RecordWriter {
 public:
  explicit RecordWriter(sqlite3* connection) : connection_(connection) {}

  // False on failure, with the failing statement in the log.

  bool store(const runData& run) { return store(runInsertion, run, run_); }
  bool store(const lapData& lap) { return store(lapInsertion, lap, lap_); }
  bool store(const trackPointData& point) { return store(pointInsertion, point, point_); }

 private:
  template <typename Record>
  bool store(const Insertion<Record>& insertion, const Record& record, PreparedStatement& insert);

  sqlite3* connection_;
  RowValues values_;  ///< Of the record in hand.
  PreparedStatement run_;
  PreparedStatement lap_;
  PreparedStatement point_;
};
