#pragma once

#include <chrono>

struct sqlite3;

/// How long the statements of a store object may wait for the locks of other connections, all of
/// them together, and how long its questions may run. The window must not freeze: on the thread of
/// its event loop both are short. Must outlive the connections that it is attached to.
class ConnectionLimits {
 public:
  using Duration = std::chrono::steady_clock::duration;

  /// The limits of the calling thread.
  ConnectionLimits();

  /// Sets the limits of a connection that was just opened. Its time to run begins here.
  void attachTo(sqlite3* connection);
  /// What changes the database runs to its end. Null is allowed.
  static void letRun(sqlite3* connection);
  /// A download is worth waiting for: storing outlasts a backup to a slow disk.
  void waitForBackups();

 private:
  static int wait(void* limits, int calls);
  static int ranTooLong(void* limits);

  bool window_;
  Duration waitLeft_;
  std::chrono::steady_clock::time_point end_;
};
