#pragma once

#include "device/deviceEnvironment.h"
#include "device/downloadResult.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

class usbOperating;

/// How far a running download is.
struct DownloadProgress {
  qsizetype blocks = 0;  ///< Received so far.
  bool stalled = false;  ///< None came for DeviceEnvironment::answerLimit.
};

/// How a download ended.
struct DownloadOutcome {
  bool linked = false;  ///< The port could be opened; else nothing below but `obstacle` counts.
  LinkObstacle obstacle = LinkObstacle::none;
  bool cancelled = false;  ///< Nothing was stored then.
  qint32 code = downloadResult::notStored;
  qsizetype newRuns = 0;        ///< Runs that were not stored before.
  qsizetype runsNotStored = 0;  ///< How many of these could not be stored.
  qsizetype knownRuns = 0;      ///< Runs that were stored before.
  qsizetype shortBlocks = 0;    ///< Blocks that came only in part.
  qsizetype strayLines = 0;     ///< Laps and points without a header before them.
  bool endless = false;         ///< Given up: far more blocks than a watch holds, and no end.
  bool linesKept = false;       ///< The lines are in `keptPath`, until the next download.
  QString keptPath;             ///< DeviceEnvironment::lastDownloadPath.
  QString lastingPath;          ///< File that keeps the lines for good; null when none had to.

  qsizetype runsStored() const { return newRuns - runsNotStored; }
  bool isMixed() const { return downloadResult::mixesPoints(knownRuns, newRuns); }
  /// Nothing that came is missing in the database, as far as can be told, or may be wrong in it.
  bool isWhole() const;
  /// Everything that the watch sent is in the database, and its lines are kept: the watch may be
  /// erased unasked.
  bool isSafe() const;
};

/// One download from link to kept lines, as every front end makes it.
class WatchDownload {
 public:
  using Progress = std::function<void(const DownloadProgress&)>;

  /// `progress` is called on the thread of run(), at most ten times a second and whenever `stalled`
  /// changes; it must not throw.
  explicit WatchDownload(const DeviceEnvironment& environment, Progress progress = {});
  ~WatchDownload();
  WatchDownload(const WatchDownload&) = delete;
  WatchDownload& operator=(const WatchDownload&) = delete;

  /// Links, downloads, stores and keeps. Once per object; blocks until the watch has sent its end
  /// marker or cancel() is called.
  DownloadOutcome run();
  /// Ends run() and releases the port at once. What was received is dropped, unless it is being
  /// stored already: then run() ends as usual. Any thread, at any time, but no signal handler.
  void cancel();
  /// True while the watch is silent in the middle of its download. Any thread.
  bool isStalled() const { return stalled_; }
  /// Tells the watch to erase its records, after run(). None when the command went out, else why
  /// not. Same thread as run(), or any after it has ended.
  LinkObstacle eraseWatch();

 private:
  using Clock = std::chrono::steady_clock;

  std::shared_ptr<usbOperating> nextLink(const std::shared_ptr<WatchSession>& session);
  void takeProgress(qsizetype blocks, bool came);

  const DeviceEnvironment environment_;
  const Progress progress_;
  Clock::time_point lastTold_;
  std::atomic<bool> stalled_{false};
  std::mutex mutex_;                   // guards the two below
  std::shared_ptr<usbOperating> usb_;  // the link of the step in hand
  bool cancelled_ = false;
};
