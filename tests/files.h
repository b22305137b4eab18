#pragma once

#include <QFile>

#include <csignal>
#include <sys/resource.h>

// Files of the tests' own, in any folder's tests.

inline QByteArray bytesOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

inline void writeBytes(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
    qFatal("cannot write a file");
  }
}

/// While it lives, no file of this process can grow beyond `room` bytes, as on a full disk.
struct FullDisk {
  explicit FullDisk(rlim_t room) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limited{room, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before);
    (void)std::signal(SIGXFSZ, handler);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before{};
  void (*handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};
