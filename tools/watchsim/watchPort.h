#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// The watch's end of a pseudo-terminal. The other end is a serial port for the program; it is kept
/// open here too, so that the terminal outlives the program's closing of it. One thread at a time.
class WatchPort {
 public:
  WatchPort() = default;
  ~WatchPort();
  WatchPort(const WatchPort&) = delete;
  WatchPort& operator=(const WatchPort&) = delete;

  /// What came in since the last read.
  struct Input {
    QByteArray bytes;
    bool wasFlushed = false;  ///< The program threw away what it had not read yet.
  };

  /// Null on success, else the reason.
  QString open();
  /// Hangs up: the program's reads and writes fail from now on.
  void close();
  /// Never waits.
  Input read();
  /// Never waits. The number of bytes that the line took, 0 when it is full.
  qsizetype write(const char* data, qsizetype size);
  /// Throws away what was written and not read yet.
  void discardUnread();
  /// Waits until there is input, until the line takes bytes (when `forWriting`), until `wakeUp` can
  /// be read, or until `limit` has passed (none: for ever).
  void wait(int wakeUp, bool forWriting, std::optional<std::chrono::nanoseconds> limit) const;

  QString path;  ///< The program's end; set by open().

 private:
  int watchEnd_ = -1;
  int programEnd_ = -1;
};
