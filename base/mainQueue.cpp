#include "base/mainQueue.h"

#include "base/detachThread.h"
#include "base/mainThreadWork.h"

#include <QCoreApplication>

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
    runGuarded("main queue", block);  // the blocks behind it wait for the end of this one
  }
  queue.draining = false;
}

}  // namespace

// The work waits in a list of our own, one event for each: what a thread wrote before is then
// handed over by a lock that every checker of threads can see.
void performOnMainThread(std::function<void()> work) {
  if (QCoreApplication* application = QCoreApplication::instance()) {
    MainThreadWork::of(*application).add(std::move(work));
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
