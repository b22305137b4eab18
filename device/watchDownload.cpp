#include "device/watchDownload.h"

#include "device/usbOperating.h"

#include <utility>

namespace {

constexpr std::chrono::milliseconds toldEvery{100};

}  // namespace

bool DownloadOutcome::isWhole() const {
  return runsNotStored == 0 && shortBlocks == 0 && strayLines == 0 && !isMixed();
}

bool DownloadOutcome::isSafe() const {
  const bool wellEnded = code == downloadResult::stored || code == downloadResult::noRunCompleted;
  return linked && !cancelled && wellEnded && isWhole() && linesKept;
}

WatchDownload::WatchDownload(const DeviceEnvironment& environment, Progress progress)
    : environment_(environment), progress_(std::move(progress)) {}

WatchDownload::~WatchDownload() = default;

DownloadOutcome WatchDownload::run() {
  DownloadOutcome outcome;
  outcome.keptPath = environment_.lastDownloadPath;
  // Both links of one download belong together: no other download gets the port in between.
  const auto session = std::make_shared<WatchSession>();
  std::shared_ptr<usbOperating> usb = nextLink(session);
  outcome.linked = !usb->cancelled && usb->linkCommand();
  outcome.obstacle = usb->linkObstacle;
  outcome.cancelled = usb->cancelled;
  if (!outcome.linked) {
    return outcome;
  }
  usb = nextLink(session);
  usb->onWait = [this](qsizetype blocks, bool came) { takeProgress(blocks, came); };
  outcome.code = usb->getAllData();
  stalled_ = false;
  outcome.obstacle = usb->linkObstacle;
  outcome.cancelled = usb->cancelled && outcome.code == downloadResult::notStored;
  outcome.newRuns = usb->newRuns;
  outcome.runsNotStored = usb->runsNotStored;
  outcome.knownRuns = usb->knownRuns;
  outcome.shortBlocks = usb->shortBlocks;
  outcome.strayLines = usb->strayLines;
  outcome.endless = usb->endless;
  outcome.linesKept = usb->linesKept;
  outcome.lastingPath = usb->lastingPath;
  return outcome;
}

/// A fresh link, which cancel() reaches from here on.
std::shared_ptr<usbOperating> WatchDownload::nextLink(
    const std::shared_ptr<WatchSession>& session) {
  auto usb = usbOperating::create(environment_, session);
  const std::lock_guard lock(mutex_);
  if (cancelled_) {
    usb->cancel();
  }
  usb_ = usb;
  return usb;
}

void WatchDownload::cancel() {
  const std::lock_guard lock(mutex_);
  cancelled_ = true;
  if (usb_) {
    usb_->cancel();
  }
}

LinkObstacle WatchDownload::eraseWatch() {
  usb_->checkUSB = false;
  usb_->deleteAllData();
  if (usb_->eraseSent) {
    return LinkObstacle::none;
  }
  const LinkObstacle obstacle = usb_->linkObstacle;
  return obstacle == LinkObstacle::none ? LinkObstacle::otherError : obstacle;
}

void WatchDownload::takeProgress(qsizetype blocks, bool came) {
  const bool changed = stalled_.exchange(!came) == came;
  const auto now = Clock::now();
  if (progress_ && (changed || now - lastTold_ >= toldEvery)) {
    lastTold_ = now;
    progress_({blocks, !came});
  }
}
