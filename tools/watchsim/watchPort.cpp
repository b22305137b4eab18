#include "tools/watchsim/watchPort.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

WatchPort::~WatchPort() {
  close();
}

QString WatchPort::open() {
  const auto failure = [this](const char* step) {
    QString reason =
        QString::fromLatin1("%1: %2").arg(QString::fromLatin1(step), qt_error_string(errno));
    close();
    return reason;
  };
  watchEnd_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  if (watchEnd_ < 0 || ::grantpt(watchEnd_) != 0 || ::unlockpt(watchEnd_) != 0) {
    return failure("no pseudo-terminal");
  }
  std::array<char, 128> name{};
  if (::ptsname_r(watchEnd_, name.data(), name.size()) != 0) {
    return failure("pseudo-terminal without a name");
  }
  programEnd_ = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios attributes{};
  if (programEnd_ < 0 || ::tcgetattr(programEnd_, &attributes) != 0) {
    return failure(name.data());
  }
  ::cfmakeraw(&attributes);
  ::cfsetspeed(&attributes, B115200);
  // Packet mode puts a byte in front of all input, which tells of the program's flushing.
  int on = 1;
  if (::tcsetattr(programEnd_, TCSANOW, &attributes) != 0 ||
      ::ioctl(watchEnd_, TIOCPKT, &on) != 0) {
    return failure(name.data());
  }
  path = QString::fromLocal8Bit(name.data());
  return {};
}

void WatchPort::close() {
  for (int* end : {&programEnd_, &watchEnd_}) {
    if (*end >= 0) {
      ::close(*end);
      *end = -1;
    }
  }
}

WatchPort::Input WatchPort::read() {
  Input input;
  std::array<char, 512> buffer{};
  for (;;) {
    const ssize_t count = ::read(watchEnd_, buffer.data(), buffer.size());
    if (count <= 0) {
      return input;
    }
    if (buffer[0] == TIOCPKT_DATA) {
      input.bytes.append(buffer.data() + 1, count - 1);
    } else if ((buffer[0] & TIOCPKT_FLUSHREAD) != 0) {
      input.wasFlushed = true;
    }
  }
}

qsizetype WatchPort::write(const char* data, qsizetype size) {
  const ssize_t count = ::write(watchEnd_, data, static_cast<size_t>(size));
  return count > 0 ? count : 0;
}

void WatchPort::discardUnread() {
  ::tcflush(programEnd_, TCIFLUSH);
  // This flush is reported like one of the program; the report goes here.
  std::array<char, 1> report{};
  pollfd ready{watchEnd_, POLLPRI, 0};
  if (::poll(&ready, 1, 0) > 0 && (ready.revents & POLLPRI) != 0) {
    static_cast<void>(::read(watchEnd_, report.data(), report.size()));
  }
}

void WatchPort::wait(int wakeUp, bool forWriting,
                     std::optional<std::chrono::nanoseconds> limit) const {
  std::array<pollfd, 2> waiting{
      {{wakeUp, POLLIN, 0},
       {watchEnd_, static_cast<short>(forWriting ? POLLIN | POLLOUT : POLLIN), 0}}};
  timespec time{};
  if (limit) {
    const auto nanoseconds = std::max(*limit, std::chrono::nanoseconds(0)).count();
    time.tv_sec = nanoseconds / 1'000'000'000;
    time.tv_nsec = nanoseconds % 1'000'000'000;
  }
  ::ppoll(waiting.data(), waiting.size(), limit ? &time : nullptr, nullptr);
}
