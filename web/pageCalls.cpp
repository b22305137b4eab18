#include "web/pageCalls.h"

#include <utility>

PageCalls::PageCalls(Runner runner) : runner_(std::move(runner)) {}

void PageCalls::add(const QString& script, std::function<void()> done) {
  waiting_.push_back({script, std::move(done)});
  runNext();
}

void PageCalls::start() {
  ready_ = true;
  runNext();
}

void PageCalls::reset() {
  waiting_.clear();
  ready_ = false;
  busy_ = false;
  page_ = std::make_shared<int>();
}

void PageCalls::runNext() {
  if (!ready_ || busy_ || waiting_.empty()) {
    return;
  }
  Call call = std::move(waiting_.front());
  waiting_.pop_front();
  busy_ = true;
  runner_(call.script, [this, page = std::weak_ptr<int>(page_), done = std::move(call.done)] {
    if (!page.expired()) {
      finish(done);
    }
  });
}

void PageCalls::finish(const std::function<void()>& done) {
  busy_ = false;
  const std::weak_ptr<int> page = page_;
  if (done) {
    done();
  }
  if (!page.expired()) {
    runNext();
  }
}
