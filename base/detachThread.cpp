#include "base/detachThread.h"

#include <QLoggingCategory>

#include <atomic>
#include <cstdio>
#include <exception>
#include <mutex>
#include <pthread.h>
#include <thread>
#include <utility>

Q_LOGGING_CATEGORY(lcThread, "trakko.thread", QtInfoMsg)

namespace {

using Observer = std::function<void(const QString& thread, const QString& reason)>;

std::atomic<int> running{0};

struct Failures {
  std::mutex mutex;
  Observer observer;
};

Failures& failures() {
  static auto* told = new Failures;  // outlives detached threads that fail at exit
  return *told;
}

/// The exception in hand, in words.
const char* reasonInHand() {
  try {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "unknown exception";
  }
}

/// Called with an exception in hand. The observer may run out of memory, too.
void tellFailure(const char* name) noexcept {
  try {
    const char* reason = reasonInHand();
    qCCritical(lcThread, "%s: %s", name, reason);
    const std::lock_guard lock(failures().mutex);
    if (failures().observer) {
      failures().observer(QString::fromLatin1(name), QString::fromLocal8Bit(reason));
    }
  } catch (...) {
    std::fputs("a thread failed and could not tell why\n", stderr);
  }
}

}  // namespace

void runGuarded(const char* name, const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (...) {
    tellFailure(name);
  }
}

bool detachThread(const char* name, std::function<void()> work) {
  ++running;
  try {
    std::thread([name, task = std::move(work)]() mutable {
      pthread_setname_np(pthread_self(), name);
      runGuarded(name, task);
      task = nullptr;  // let go of what the work kept alive before the thread counts as ended
      --running;
    }).detach();
    return true;
  } catch (...) {
    --running;
    tellFailure(name);
    return false;
  }
}

void observeThreadFailures(Observer told) {
  const std::lock_guard lock(failures().mutex);
  failures().observer = std::move(told);
}

int detachedThreadCount() {
  return running;
}
