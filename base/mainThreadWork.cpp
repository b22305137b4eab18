#include "base/mainThreadWork.h"

#include "base/detachThread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <utility>

MainThreadWork& MainThreadWork::of(const QCoreApplication& application) {
  static auto* work = [&application] {
    auto* made = new MainThreadWork;  // outlives detached threads that still hand work over at exit
    made->moveToThread(application.thread());
    return made;
  }();
  return *work;
}

void MainThreadWork::add(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
  }
  QMetaObject::invokeMethod(this, "doNext", Qt::QueuedConnection);
}

void MainThreadWork::doNext() {
  std::function<void()> next;
  {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) {
      return;
    }
    next = std::move(waiting_.front());
    waiting_.pop_front();
  }
  runGuarded("main", next);  // the event loop lets no exception through
}
