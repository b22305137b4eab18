#include "data/databaseLock.h"

#include "data/connection.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

DatabaseLock::DatabaseLock(const QString& folder) : folder_(folder) {}

DatabaseLock::~DatabaseLock() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

// The folder itself is locked: nobody can have made it unusable as a lock, as a file of the same
// purpose can be foreign or a folder. Some network file systems lock only what can be written;
// there a file has to do.
DatabaseLock::State DatabaseLock::take() {
  const QByteArray folder = QFile::encodeName(folder_);
  const QByteArray file = folder + "gpsData.lock";
  State state = lockOpened(open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (state == State::impossible) {
    state = lockOpened(open(file.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  }
  if (state == State::impossible) {
    qCWarning(dataLog).noquote() << "no lock in" << folder_ << '-' << qt_error_string(errno);
  }
  return state;
}

DatabaseLock::State DatabaseLock::lockOpened(int descriptor) {
  if (descriptor < 0) {
    return State::impossible;
  }
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
    descriptor_ = descriptor;
    return State::held;
  }
  const int error = errno;
  close(descriptor);
  errno = error;
  return error == EWOULDBLOCK ? State::taken : State::impossible;
}
