#pragma once

#include <QByteArray>
#include <QString>

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

/// Up to `count` bytes, fewer when the line hangs up or nothing more comes within `ms`.
inline QByteArray receiveBytes(int descriptor, qsizetype count, int ms) {
  QByteArray bytes;
  pollfd file{descriptor, POLLIN, 0};
  while (bytes.size() < count && ::poll(&file, 1, ms) == 1) {
    QByteArray part(count - bytes.size(), '\0');
    const ssize_t got = ::read(descriptor, part.data(), static_cast<std::size_t>(part.size()));
    if (got <= 0) {
      break;
    }
    bytes += part.first(got);
  }
  return bytes;
}

/// A pseudo-terminal whose far end, the watch's, is held by the test.
class PseudoTerminal {
 public:
  PseudoTerminal() : far_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    ::grantpt(far_);
    ::unlockpt(far_);
    path = QString::fromLocal8Bit(::ptsname(far_));
    // Open here too, so that the line survives a client's closing.
    keeper_ = ::open(::ptsname(far_), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~PseudoTerminal() { hangUp(); }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  bool send(const QByteArray& bytes) const {
    return ::write(far_, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size();
  }
  QByteArray receive(qsizetype count, int ms = 2000) const { return receiveBytes(far_, count, ms); }

  /// What pulling the plug does to the other side.
  void hangUp() {
    ::close(std::exchange(keeper_, -1));
    ::close(std::exchange(far_, -1));
  }

  QString path;

 private:
  int far_;
  int keeper_ = -1;
};
