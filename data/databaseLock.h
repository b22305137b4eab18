#pragma once

#include <QString>

/// One process works on a database: two that count on from the same highest number would give it
/// twice. The kernel gives the lock back when the process ends, however it ends. Any thread, one at
/// a time.
class DatabaseLock {
 public:
  enum class State {
    held,
    taken,       ///< Another process holds it.
    impossible,  ///< No lock can be had there; whether another process works on it is not known.
  };

  /// `folder` is the one that holds the database, with its trailing "/".
  explicit DatabaseLock(const QString& folder);
  ~DatabaseLock();
  DatabaseLock(const DatabaseLock&) = delete;
  DatabaseLock& operator=(const DatabaseLock&) = delete;

  /// Answers at once; the lock is held until the object goes.
  State take();

 private:
  QString folder_;
  int descriptor_ = -1;

  State lockOpened(int descriptor);
};
