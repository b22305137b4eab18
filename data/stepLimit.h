#pragma once

#include <QtGlobal>

struct sqlite3;

/// Ends a statement that takes far more steps than an honest file of its size can ask for: in a
/// stranger's file, pages may lead to one another in circles. Steps instead of time, because a slow
/// disk takes its time. Must outlive the connection that it is attached to.
class StepLimit {
 public:
  /// Sets the limit of a connection that was just opened; null is allowed. The statement fails with
  /// SQLITE_INTERRUPT.
  void attachTo(sqlite3* connection);
  /// To be told each time when `stepsBetween` more were taken.
  bool isReached();

  /// SQLite's steps between two looks: some milliseconds.
  static constexpr int stepsBetween = 100'000;

 private:
  qint64 most_ = 0;  ///< Steps of a statement.
  qint64 left_ = 0;  ///< Of the one in hand.
};
