#pragma once

#include <functional>
#include <thread>

/// While one lives, Ctrl+C and a request to end the process do not end it but call `act`, once, on
/// a thread of its own. At most one lives at a time; the signals must not have been handled before.
class Interruption {
 public:
  explicit Interruption(std::function<void()> act);
  /// The signals have their usual effect again.
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  int wake_ = -1;
  int signals_ = -1;
  std::thread waiter_;
};
