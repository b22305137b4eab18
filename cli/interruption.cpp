#include "cli/interruption.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t endingSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

}  // namespace

// Threads started later inherit the mask, so the signals reach nobody but the descriptor.
Interruption::Interruption(std::function<void()> act) {
  const sigset_t set = endingSignals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  wake_ = ::eventfd(0, EFD_CLOEXEC);
  signals_ = ::signalfd(-1, &set, SFD_CLOEXEC);
  waiter_ = std::thread([this, act = std::move(act)] {
    std::array<pollfd, 2> files{pollfd{wake_, POLLIN, 0}, pollfd{signals_, POLLIN, 0}};
    while (::poll(files.data(), files.size(), -1) < 0) {
    }
    signalfd_siginfo taken{};  // one that nobody takes would end the process later
    if (files[1].revents != 0 && ::read(signals_, &taken, sizeof taken) > 0) {
      act();
      const sigset_t again = endingSignals();
      pthread_sigmask(SIG_UNBLOCK, &again, nullptr);  // a second one ends the process at once
    }
  });
}

Interruption::~Interruption() {
  ::eventfd_write(wake_, 1);
  waiter_.join();
  ::close(wake_);
  ::close(signals_);
  const sigset_t set = endingSignals();
  const timespec atOnce{};
  while (::sigtimedwait(&set, nullptr, &atOnce) > 0) {  // further ones mean the same
  }
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}
