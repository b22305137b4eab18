#include "device/serialPort.h"

#include "device/serialSpeed.h"

#include <QLoggingCategory>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

Q_LOGGING_CATEGORY(lcPort, "trakko.device.port", QtInfoMsg)

namespace {

using std::chrono::steady_clock;

// A busy machine can stall for more than 100 ms within a block. A block that is whole is handed
// over at once.
constexpr int quietLineMs = 1000;
constexpr int forEver = -1;
constexpr auto writeLimit = std::chrono::seconds(1);

int remainingMs(steady_clock::time_point deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady_clock::now());
  return std::max(0, static_cast<int>(left.count()));
}

/// Waits for the events on the port. 1 when there is something to do there, 0 after the time limit,
/// -1 when the port is being closed or waiting failed.
int awaitPort(int descriptor, int wake, short events, int timeoutMs) {
  std::array<pollfd, 2> files{pollfd{wake, POLLIN, 0}, pollfd{descriptor, events, 0}};
  for (;;) {
    const int ready = ::poll(files.data(), files.size(), timeoutMs);
    if (ready < 0 && errno == EINTR) {
      continue;
    }
    if (ready < 0 || files[0].revents != 0) {
      return -1;
    }
    return ready == 0 ? 0 : 1;
  }
}

}  // namespace

/// Keeps the descriptor from being closed while it is read or written.
class SerialPort::Use {
 public:
  explicit Use(SerialPort& port) : port_(port) {
    const std::lock_guard lock(port_.mutex_);
    if (!port_.closing_ && port_.descriptor >= 0) {
      ++port_.users_;
      descriptor = port_.descriptor;
    }
  }
  ~Use() {
    if (descriptor < 0) {
      return;
    }
    const std::lock_guard lock(port_.mutex_);
    if (--port_.users_ == 0) {
      port_.idle_.notify_all();
    }
  }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  int descriptor = -1;

 private:
  SerialPort& port_;
};

SerialPort::~SerialPort() {
  close();
}

QString SerialPort::open(const QString& node, qint32 baud) {
  const int opened = ::open(node.toUtf8().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (opened < 0) {
    openError = errno;
    return QStringLiteral("Error: couldn't open serial port");
  }
  descriptor = opened;
  wake_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  QString error = configure(baud);
  if (!error.isNull()) {
    openError = errno;
    close();
  }
  return error;
}

QString SerialPort::configure(qint32 baud) {
  // The ioctl does not bind the superuser; the advisory lock binds every user of this program. It
  // comes first: the ioctl sets a flag of the line, which an opening that is refused leaves alone.
  if (wake_ < 0 || ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 ||
      ::ioctl(descriptor, TIOCEXCL) != 0) {
    return QStringLiteral("Error: couldn't obtain lock on serial port");
  }
  exclusive_ = true;
  if (::fcntl(descriptor, F_SETFL, 0) != 0) {
    return QStringLiteral("Error: couldn't obtain lock on serial port");
  }
  if (::tcgetattr(descriptor, &originalAttributes) != 0) {
    return QStringLiteral("Error: couldn't get serial attributes");
  }
  termios raw = originalAttributes;
  ::cfmakeraw(&raw);
  if (::tcsetattr(descriptor, TCSANOW, &raw) != 0) {
    return QStringLiteral("Error: coudln't set serial attributes");
  }
  if (!setLineSpeed(descriptor, baud)) {
    return QStringLiteral("Error: Baud Rate out of bounds");
  }
  if (!setLowLatency(descriptor)) {
    return QStringLiteral("Error: coudln't set serial latency");
  }
  // What came before raw mode was altered and echoed by the line discipline.
  ::tcflush(descriptor, TCIFLUSH);
  // Waiting is left to poll(), which close() can end. What poll() saw may be gone when it is read:
  // another program took it, or the driver's buffer was flushed.
  if (::fcntl(descriptor, F_SETFL, O_NONBLOCK) != 0) {
    return QStringLiteral("Error: couldn't obtain lock on serial port");
  }
  return {};
}

void SerialPort::close() {
  std::unique_lock lock(mutex_);
  if (closing_) {
    idle_.wait(lock, [this] { return descriptor < 0; });
    return;
  }
  if (descriptor < 0) {
    return;
  }
  closing_ = true;
  if (wake_ >= 0) {
    ::eventfd_write(wake_, 1);
  }
  idle_.wait(lock, [this] { return users_ == 0; });
  if (wake_ >= 0) {
    ::close(std::exchange(wake_, -1));
  }
  if (exclusive_) {
    ::ioctl(descriptor, TIOCNXCL);
  }
  // The number goes to -1 first: once it is closed the system may hand it out again.
  ::close(descriptor.exchange(-1));
  idle_.notify_all();
}

/// Takes what the system has, up to the size of ahead_, after waiting for it. The number of bytes;
/// 0 when the line is gone; -1 when the port is closed or failed; -2 after the time limit.
ssize_t SerialPort::fill(int timeout) {
  const Use use(*this);
  if (use.descriptor < 0) {
    return -1;
  }
  for (;;) {
    const int ready = awaitPort(use.descriptor, wake_, POLLIN, timeout);
    if (ready <= 0) {
      return ready == 0 ? -2 : -1;
    }
    const ssize_t count = ::read(use.descriptor, ahead_.data(), ahead_.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
      continue;
    }
    if (count < 0 && errno == EIO) {
      return 0;  // unplugged, or the other end of a pseudo-terminal closed
    }
    aheadBegin_ = 0;
    aheadEnd_ = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return count;
  }
}

ssize_t SerialPort::read(std::span<std::byte> buffer) {
  std::size_t gathered = 0;
  while (gathered < buffer.size()) {
    if (aheadBegin_ == aheadEnd_) {
      const ssize_t came = fill(gathered == 0 ? forEver : quietLineMs);
      if (came == -1 || (came == 0 && gathered == 0)) {
        return came;
      }
      if (came <= 0) {
        break;  // quiet, or gone: the part that came is a block of its own
      }
    }
    const std::size_t part = std::min(buffer.size() - gathered, aheadEnd_ - aheadBegin_);
    std::memcpy(buffer.data() + gathered, ahead_.data() + aheadBegin_, part);
    aheadBegin_ += part;
    gathered += part;
  }
  return isOpen() ? static_cast<ssize_t>(gathered) : -1;
}

bool SerialPort::write(std::span<const std::byte> bytes) {
  const std::lock_guard oneAtATime(writeMutex_);
  const Use use(*this);
  if (use.descriptor < 0) {
    qCWarning(lcPort, "nothing written: the port is closed");
    return false;
  }
  const auto deadline = steady_clock::now() + writeLimit;
  while (!bytes.empty()) {
    const ssize_t count = ::write(use.descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
      continue;
    }
    const int error = count == 0 ? EIO : errno;
    if (error != EAGAIN && error != EINTR) {
      qCWarning(lcPort, "write failed: %s", std::strerror(error));
      return false;
    }
    if (awaitPort(use.descriptor, wake_, POLLOUT, remainingMs(deadline)) <= 0) {
      qCWarning(lcPort, "write given up: %zu bytes left", bytes.size());
      return false;
    }
  }
  return true;
}
