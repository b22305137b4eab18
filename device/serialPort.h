#pragma once

#include <QString>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <span>
#include <sys/types.h>
#include <termios.h>

/// One opening of a serial port, raw, 8 bits, for this process alone.
///
/// The object knows when it is closed, so that nothing is ever read from or written to a descriptor
/// number that the system has handed out again: 32 command bytes sent that way would end up in the
/// database file. One thread reads; any thread may write and close.
class SerialPort {
 public:
  SerialPort() = default;
  ~SerialPort();
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  /// Opens the device file. A null text on success; else the error text (English, for the log), the
  /// port is closed and openError holds errno. Once per object, before other threads know it.
  QString open(const QString& node, qint32 baud);

  /// Wakes a blocked read, waits until nobody uses the descriptor any more, closes. Any thread but
  /// not from within a read or write; closing again does nothing.
  void close();

  /// Reads until the buffer is full, or something came and the line has been quiet for a second,
  /// so that a block arrives whole however the bridge cuts it up. Never hands over two blocks as
  /// one. The number of bytes; 0 when the line is gone; -1 when the port is closed or failed.
  ssize_t read(std::span<std::byte> buffer);

  /// Writes all bytes; false when the port is closed, fails or takes nothing for a second.
  bool write(std::span<const std::byte> bytes);

  /// False from the moment that closing begins: a read that close() has ended finds the port closed
  /// and can tell that from a line that went away.
  bool isOpen() const { return descriptor >= 0 && !closing_; }

  /// Number of the open descriptor, -1 when closed. For display only.
  std::atomic<int> descriptor{-1};
  int openError = 0;             ///< errno of the last failed opening.
  termios originalAttributes{};  ///< As found when the port was opened.

 private:
  class Use;

  QString configure(qint32 baud);
  ssize_t fill(int timeout);

  std::mutex mutex_;
  std::condition_variable idle_;
  int users_ = 0;                     ///< Reads and writes in hand. Guarded by mutex_.
  std::atomic<bool> closing_{false};  ///< Set with mutex_ locked, never cleared.
  bool exclusive_ = false;            ///< TIOCEXCL was taken. Set before other threads come.
  int wake_ = -1;                     ///< eventfd that ends every poll once the port closes.
  std::mutex writeMutex_;

  // Bytes taken from the system ahead of the blocks they belong to. Reading thread.
  std::array<std::byte, 4096> ahead_{};
  std::size_t aheadBegin_ = 0;
  std::size_t aheadEnd_ = 0;
};
