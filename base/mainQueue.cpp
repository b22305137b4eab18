#include "base/mainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <deque>
#include <mutex>
#include <utility>

namespace {

struct Blocks {
  std::mutex mutex;
  std::deque<std::function<void()>> waiting;
  bool draining = false;  // main thread only
};

Blocks& blocks() {
  static auto* queue = new Blocks;  // outlives detached threads that still post at exit
  return *queue;
}

std::function<void()> takeNext() {
  Blocks& queue = blocks();
  const std::lock_guard lock(queue.mutex);
  if (queue.waiting.empty()) {
    return {};
  }
  std::function<void()> next = std::move(queue.waiting.front());
  queue.waiting.pop_front();
  return next;
}

void drain() {
  Blocks& queue = blocks();
  if (queue.draining) {
    return;  // called from the event loop of a modal box; the block that shows it goes on draining
  }
  queue.draining = true;
  while (const std::function<void()> block = takeNext()) {
    block();
  }
  queue.draining = false;
}

}  // namespace

void performOnMainThread(std::function<void()> work) {
  if (QCoreApplication* application = QCoreApplication::instance()) {
    QMetaObject::invokeMethod(application, std::move(work), Qt::QueuedConnection);
  }
}

void mainQueue::post(std::function<void()> block) {
  {
    Blocks& queue = blocks();
    const std::lock_guard lock(queue.mutex);
    queue.waiting.push_back(std::move(block));
  }
  performOnMainThread(drain);
}
