// The download of the controller, from the button to the refreshed tables.

#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "device/downloadWords.h"

#include <QPointer>
#include <QProgressBar>
#include <QScopeGuard>

#include <thread>
#include <utility>

namespace {

Verdict verdictOf(const DownloadOutcome& outcome) {
  const bool whole = outcome.linked && outcome.isWhole();
  if (whole && outcome.code == downloadResult::stored) {
    return Verdict::done;
  }
  return whole && outcome.code == downloadResult::noRunCompleted ? Verdict::note : Verdict::failure;
}

}  // namespace

void TrakkoAppDelegate::downloadDataBu() {
  // One that no longer gets anything would keep the port for ever; its line has told the user to
  // download again.
  for (const std::shared_ptr<WatchDownload>& download : downloads_) {
    if (download->isStalled()) {
      download->cancel();
    }
  }
  showStatus(downloadWords::running(), Verdict::progress);
  progressBar->setVisible(true);
  if (++downloadsRunning_ == 1) {
    startProgress();
  }
  const bool started = detachThread("download", [this] {
    const auto atAnyEnd = qScopeGuard([this] { performOnMainThread([this] { downloadEnded(); }); });
    downloadData();
  });
  if (!started) {
    downloadEnded();
  }
}

/// One thread at a time: one that has not seen yet that the download before ended goes on for this
/// one, and one that has seen it is followed by another. A second one would be left over, as the
/// first to see the end takes it back.
void TrakkoAppDelegate::startProgress() {
  checkStop = false;
  if (progressRuns_) {
    return;
  }
  progressRuns_ = detachThread("progress", [this] {
    const auto atAnyEnd = qScopeGuard([this] {
      performOnMainThread([this] {
        progressRuns_ = false;
        if (downloadsRunning_ > 0) {
          startProgress();
        }
      });
    });
    controlProgressIndicator();
  });
}

/// The bar stays while another download runs.
void TrakkoAppDelegate::downloadEnded() {
  if (--downloadsRunning_ == 0) {
    checkStop = true;
    progressBar->setVisible(false);
  }
}

void TrakkoAppDelegate::downloadData() {
  const auto download = std::make_shared<WatchDownload>(
      context_.device, [this, wasStalled = false](const DownloadProgress& progress) mutable {
        if (std::exchange(wasStalled, progress.stalled) != progress.stalled) {
          performOnMainThread([this, stalled = progress.stalled] {
            showStatus(stalled ? downloadWords::stalled() : downloadWords::running(),
                       stalled ? Verdict::failure : Verdict::progress);
          });
        }
      });
  performOnMainThread([this, download] { downloads_.push_back(download); });
  const auto atAnyEnd = qScopeGuard([this, &download] {
    performOnMainThread([this, download] { std::erase(downloads_, download); });
  });
  takeDownload(download, download->run());
}

void TrakkoAppDelegate::takeDownload(const std::shared_ptr<WatchDownload>& download,
                                     const DownloadOutcome& outcome) {
  if (outcome.cancelled) {
    return;  // the line belongs to the download that took its place
  }
  const bool stored = outcome.linked && outcome.code == downloadResult::stored;
  const QString message =
      stored ? downloadWords::warning(outcome) : downloadWords::message(outcome.code);
  if (outcome.linked && !message.isNull()) {
    alertUSB(message);
  }
  performOnMainThread([this, line = downloadWords::ending(outcome), verdict = verdictOf(outcome)] {
    showStatus(line, verdict);
  });
  if (!stored) {
    return;
  }
  getNewData = 1;
  mainQueue::post([this, download] { askToEraseWatch(*download); });
  mainQueue::post([this] { startRefreshOfNewData(); });
}

void TrakkoAppDelegate::askToEraseWatch(WatchDownload& download) {
  if (context_.dialogs->confirmErase(QStringLiteral("時計本体のデータを消去しますか？"))) {
    const LinkObstacle obstacle = download.eraseWatch();
    showStatus(downloadWords::erased(obstacle),
               obstacle == LinkObstacle::none ? Verdict::done : Verdict::failure);
  }
}

/// What a thread was to do is not done, and its line must not go on saying that it is.
void TrakkoAppDelegate::tellThreadFailures() {
  observeThreadFailures([self = QPointer(this)](const QString& thread, const QString& reason) {
    performOnMainThread([self, thread, reason] {
      if (self && self->statusLine != nullptr) {
        self->showStatus(
            QStringLiteral("内部エラーのため処理を中断しました（%1：%2）。").arg(thread, reason),
            Verdict::failure);
      }
    });
  });
}

void TrakkoAppDelegate::controlProgressIndicator() {
  constexpr double full = 100.0;
  double value = 0.0;
  showProgressValue(value);
  while (value < full) {
    value += 1.0;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (value == full) {
      value = 0.0;
    }
    if (checkStop) {
      showProgressValue(0.0);
      checkStop = false;
      return;
    }
    showProgressValue(value);
  }
}

void TrakkoAppDelegate::showProgressValue(double value) {
  // A main thread that is behind gets one update with the latest value, not a queue of old ones.
  constexpr int taken = -1;
  if (shownValue_.exchange(static_cast<int>(value)) == taken) {
    performOnMainThread([this] { progressBar->setValue(shownValue_.exchange(taken)); });
  }
}
