#include "data/connectionLimits.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <sqlite3.h>
#include <thread>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto windowWait = 250ms;
constexpr auto usualWait = 5s;
constexpr auto storingWait = 10min;
/// Far above what the largest honest file needs.
constexpr auto windowRun = 10s;

/// Without linking the windows: programs that have none may wait on any thread.
bool isWindowThread() {
  const QCoreApplication* application = QCoreApplication::instance();
  return application != nullptr && application->inherits("QGuiApplication") &&
         application->thread() == QThread::currentThread();
}

}  // namespace

ConnectionLimits::ConnectionLimits()
    : window_(isWindowThread()), waitLeft_(window_ ? Duration(windowWait) : Duration(usualWait)) {}

void ConnectionLimits::attachTo(sqlite3* connection) {
  sqlite3_busy_handler(connection, wait, this);
  steps_.attachTo(connection);
  if (window_) {
    end_ = Clock::now() + windowRun;
    sqlite3_progress_handler(connection, StepLimit::stepsBetween, ranTooLong, this);
  }
}

void ConnectionLimits::waitForBackups() {
  waitLeft_ = storingWait;
}

int ConnectionLimits::wait(void* limits, int /*calls*/) {
  constexpr Duration pause = 5ms;
  Duration& left = static_cast<ConnectionLimits*>(limits)->waitLeft_;
  if (left <= Duration::zero()) {
    return 0;
  }
  const Clock::time_point start = Clock::now();
  std::this_thread::sleep_for(std::min(pause, left));
  left -= Clock::now() - start;
  return 1;
}

int ConnectionLimits::ranTooLong(void* limits) {
  auto* const self = static_cast<ConnectionLimits*>(limits);
  return self->steps_.isReached() || (self->end_ && Clock::now() > *self->end_) ? 1 : 0;
}
