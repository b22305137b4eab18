#pragma once

#include <QString>

#include <deque>
#include <functional>
#include <memory>

/// Scripts for a page, run strictly one after another, none before the page is there. Main thread.
class PageCalls {
 public:
  /// Runs a script in the page and calls `finished` afterwards.
  using Runner = std::function<void(const QString& script, std::function<void()> finished)>;

  explicit PageCalls(Runner runner);

  /// Adds a script; `done` is called once it has run, but never when its page is lost before.
  void add(const QString& script, std::function<void()> done);
  /// The page is there: begins with what has been added.
  void start();
  /// The page is gone: forgets what was added for it.
  void reset();

 private:
  struct Call {
    QString script;
    std::function<void()> done;
  };

  void runNext();
  void finish(const std::function<void()>& done);

  Runner runner_;
  std::deque<Call> waiting_;
  bool ready_ = false;
  bool busy_ = false;
  /// Stands for the page; answers for an earlier one do not count.
  std::shared_ptr<int> page_ = std::make_shared<int>();
};
