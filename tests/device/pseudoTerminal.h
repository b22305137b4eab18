#pragma once

#include <QByteArray>
#include <QString>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

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
    qsizetype sent = 0;
    while (sent < bytes.size()) {
      const ssize_t count =
          ::write(far_, bytes.constData() + sent, static_cast<std::size_t>(bytes.size() - sent));
      if (count <= 0) {
        return false;
      }
      sent += count;
    }
    return true;
  }

  /// Up to `count` bytes, fewer when nothing more comes within `ms`.
  QByteArray receive(qsizetype count, int ms = 2000) const {
    QByteArray bytes;
    pollfd file{far_, POLLIN, 0};
    while (bytes.size() < count && ::poll(&file, 1, ms) == 1) {
      QByteArray part(count - bytes.size(), '\0');
      const ssize_t got = ::read(far_, part.data(), static_cast<std::size_t>(part.size()));
      if (got <= 0) {
        break;
      }
      bytes += part.first(got);
    }
    return bytes;
  }

  /// What pulling the plug does to the other side.
  void hangUp() {
    for (int* descriptor : {&keeper_, &far_}) {
      if (*descriptor >= 0) {
        ::close(std::exchange(*descriptor, -1));
      }
    }
  }

  QString path;

 private:
  int far_;
  int keeper_ = -1;
};
