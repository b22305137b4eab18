#pragma once

#include "data/connection.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

/// Executes statements given as texts. INSERTs in a row that differ in their values alone, such as
/// the thousands of points of a run, are compiled once; the effect and the errors are those of
/// executing each text by itself. Must go before the connection is closed.
class InsertCache {
 public:
  /// `connection` may be null; then every statement fails.
  explicit InsertCache(sqlite3* connection) : connection_(connection) {}

  /// False on failure; the connection then tells the reason.
  bool execute(const QByteArray& sql);

 private:
  bool compile(QByteArrayView head);
  bool bindValues();

  sqlite3* connection_;
  QByteArray head_;                       ///< What `insert_` was compiled from, up to its values.
  std::vector<QByteArrayView> literals_;  ///< The values of the statement in hand.
  PreparedStatement insert_;              ///< With as many parameters as there are values.
};
