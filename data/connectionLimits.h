#pragma once

#include "data/stepLimit.h"

#include <chrono>
#include <optional>

struct sqlite3;

/// How long the statements of a store object may wait for the locks of other connections, all of
/// them together, and how long each may run. The window must not freeze: on the thread of its event
/// loop the waiting is short, and so is the running of all questions together. Must outlive the
/// connections that it is attached to.
class ConnectionLimits {
 public:
  using Duration = std::chrono::steady_clock::duration;

  /// The limits of the calling thread.
  ConnectionLimits();

  /// Sets the limits of a connection that was just opened. Its time to run begins here.
  void attachTo(sqlite3* connection);
  /// What changes the database runs as long as it may elsewhere.
  void letRun() { end_ = {}; }
  /// A download is worth waiting for: storing outlasts a backup to a slow disk.
  void waitForBackups();

 private:
  static int wait(void* limits, int calls);
  static int ranTooLong(void* limits);

  bool window_;
  Duration waitLeft_;
  std::optional<std::chrono::steady_clock::time_point> end_;  ///< Of the questions.
  StepLimit steps_;
};
