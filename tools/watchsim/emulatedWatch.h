#pragma once

#include "tools/watchsim/commandReader.h"
#include "tools/watchsim/randomNumbers.h"
#include "tools/watchsim/watchPort.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

/// How an emulated watch behaves. A fresh one is a good watch without runs at 115200 baud.
struct EmulatedWatchOptions {
  QList<QByteArray> memory =
      {};                  ///< Blocks of a download without the end marker; see makeMemory().
  QString link = {};       ///< A symbolic link to the port, made while the watch runs.
  bool fullSpeed = false;  ///< As fast as the line takes it.
  bool isSilent = false;   ///< Answers nothing at all.
  bool answersLink = true;
  bool sendsEndMarker = true;
  std::optional<qint32> onlyBlocks = {};   ///< Sends no more blocks of data than this.
  qint32 smallestPiece = 0;                ///< Bytes written at once, chosen anew for each piece;
  qint32 largestPiece = 0;                 ///< 0: whole blocks.
  bool sendsGarbage = false;               ///< Random bytes in place of the blocks.
  std::optional<qint64> hangUpAfter = {};  ///< Hangs up when downloads have sent this many bytes.
  quint32 seed = 1;                        ///< For pieces and garbage.
  /// Told of every command, by nameOf(); on the watch's thread.
  std::function<void(const QString&)> onCommand = {};
};

/// A watch on a pseudo-terminal, running on a thread of its own.
///
///   EmulatedWatch watch({.memory = makeMemory({}), .fullSpeed = true});
///   watch.start();
///   ... open watch.path() as the serial port ...
///
/// Any thread, one at a time for start() and stop().
class EmulatedWatch {
 public:
  explicit EmulatedWatch(EmulatedWatchOptions options);
  /// Stops.
  ~EmulatedWatch();
  EmulatedWatch(const EmulatedWatch&) = delete;
  EmulatedWatch& operator=(const EmulatedWatch&) = delete;

  /// Opens the port and begins to listen. Null on success, else the reason.
  QString start();
  /// Hangs up and ends the thread.
  void stop();

  /// The serial port to open; empty before the first start().
  QString path() const { return port_.path; }
  /// False also after the watch hung up by itself.
  bool isRunning() const { return isRunning_; }
  /// Names of all commands obeyed so far.
  QStringList commands() const;
  /// The memory as it is now; empty after an erase.
  QList<QByteArray> blocks() const;
  /// Downloads sent to the end.
  qint32 finishedDownloads() const { return finishedDownloads_; }
  /// Bytes sent, answers to the link command included.
  qint64 bytesSent() const { return bytesSent_; }

 private:
  using Clock = std::chrono::steady_clock;

  /// An answer on its way.
  struct Answer {
    QByteArray bytes;
    bool isDownload = false;
    Clock::time_point start = Clock::now();
    qsizetype sent = 0;
    qsizetype pieceEnd = 0;
  };

  void run();
  void takeInput();
  void obey(WatchCommand command);
  void answer(const QByteArray& bytes, bool isDownload);
  void abandonAnswer();
  void waitForWork();
  void sendPieces();
  bool isDue();
  void startPiece();
  Clock::time_point dueTime() const;
  QByteArray downloadBytes();
  QString makeLink() const;
  void removeLink() const;

  EmulatedWatchOptions options_;
  WatchPort port_;
  CommandReader reader_;
  RandomNumbers random_;
  std::optional<Answer> answer_;
  qint64 downloadBytesSent_ = 0;
  int wakeUp_ = -1;  // an eventfd that ends the thread's waiting
  std::thread thread_;
  std::atomic<bool> isStopping_{false};
  std::atomic<bool> isRunning_{false};
  std::atomic<qint32> finishedDownloads_{0};
  std::atomic<qint64> bytesSent_{0};
  mutable std::mutex mutex_;  // guards the two below
  QStringList commands_;
  QList<QByteArray> memory_;
};
