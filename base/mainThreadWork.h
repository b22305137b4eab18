#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

class QCoreApplication;

/// Work on its way to the main thread. Part of mainQueue.cpp.
class MainThreadWork : public QObject {
  Q_OBJECT

 public:
  /// The one of the process; never destroyed. Any thread.
  static MainThreadWork& of(const QCoreApplication& application);

  /// Any thread.
  void add(std::function<void()> work);

 private Q_SLOTS:
  /// Does the oldest work; called once for each.
  void doNext();

 private:
  std::mutex mutex_;
  std::deque<std::function<void()>> waiting_;  ///< Guarded by mutex_.
};
