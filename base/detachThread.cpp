#include "base/detachThread.h"

#include <QLoggingCategory>

#include <atomic>
#include <exception>
#include <pthread.h>
#include <thread>
#include <utility>

Q_LOGGING_CATEGORY(lcThread, "trakko.thread", QtInfoMsg)

namespace {

std::atomic<int> running{0};

void runGuarded(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& error) {
    qCCritical(lcThread, "thread ended by an exception: %s", error.what());
  }
}

}  // namespace

void detachThread(const char* name, std::function<void()> work) {
  ++running;
  try {
    std::thread([name, task = std::move(work)]() mutable {
      pthread_setname_np(pthread_self(), name);
      runGuarded(task);
      task = nullptr;  // let go of what the work kept alive before the thread counts as ended
      --running;
    }).detach();
  } catch (...) {  // the system refuses one more thread: the caller's affair
    --running;
    throw;
  }
}

int detachedThreadCount() {
  return running;
}
