#include "data/newFile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Many names, so that those that are taken do no harm.
constexpr int partNames = 100;

QByteArray partName(const QByteArray& place, int number) {
  return place + ".part" + (number == 0 ? QByteArray() : QByteArray::number(number));
}

constexpr mode_t newFileMode = 0666;  // the user's mask applies
constexpr mode_t permissions = 0777;
constexpr mode_t ownersRights = 0600;

}  // namespace

NewFile::NewFile(const QString& place) : place_(QFile::encodeName(place)) {}

NewFile::~NewFile() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
  if (!part_.isEmpty()) {
    unlink(part_.constData());
  }
}

bool NewFile::create(const QString& like) {
  struct stat found {};
  const bool known = stat(QFile::encodeName(like).constData(), &found) == 0;
  return underFreeName([&](const char* name) {
    descriptor_ = open(name, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
    if (descriptor_ >= 0 && known) {
      // Refused where files have none.
      fchmod(descriptor_, (found.st_mode & permissions) | ownersRights);
    }
    return descriptor_ >= 0;
  });
}

bool NewFile::linkTo(const QString& existing) {
  const QByteArray first = QFile::encodeName(existing);
  return underFreeName([&](const char* name) { return link(first.constData(), name) == 0; });
}

bool NewFile::write(const char* bytes, qsizetype size) {
  while (size > 0) {
    const ssize_t taken = ::write(descriptor_, bytes, static_cast<size_t>(size));
    if (taken < 0 && errno != EINTR) {
      return check(false);
    }
    bytes += qMax<ssize_t>(taken, 0);
    size -= qMax<ssize_t>(taken, 0);
  }
  return true;
}

qint64 NewFile::size() const {
  struct stat found {};
  return fstat(descriptor_, &found) == 0 ? found.st_size : -1;
}

bool NewFile::read(char* bytes, int count, qint64 offset) const {
  return pread(descriptor_, bytes, static_cast<size_t>(count), offset) == count;
}

bool NewFile::sync() {
  return check(fsync(descriptor_) == 0);
}

bool NewFile::replace() {
  if (!check(rename(part_.constData(), place_.constData()) == 0)) {
    return false;
  }
  // Still there when both names were those of one file: then renaming does nothing.
  unlink(part_.constData());
  part_.clear();
  return true;
}

bool NewFile::placeIfFree() {
  if (!check(renameIfFree())) {
    return false;
  }
  part_.clear();
  return true;
}

void NewFile::removeLeftovers(const QString& place) {
  for (int i = 0; i < partNames; ++i) {
    unlink(partName(QFile::encodeName(place), i).constData());
  }
}

bool NewFile::check(bool succeeded) {
  error_ = succeeded ? 0 : errno;
  return succeeded;
}

bool NewFile::underFreeName(const std::function<bool(const char*)>& make) {
  for (int i = 0; i < partNames; ++i) {
    const QByteArray name = partName(place_, i);
    if (make(name.constData())) {
      part_ = name;
      return check(true);
    }
    if (errno != EEXIST) {
      break;
    }
  }
  return check(false);
}

bool NewFile::renameIfFree() {
  if (renameat2(AT_FDCWD, part_.constData(), AT_FDCWD, place_.constData(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return false;
  }
  // A file system that cannot do this in one step; network file systems are among them. An empty
  // file takes the place first, so that no other can.
  const int claim = open(place_.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
  if (claim < 0) {
    return false;
  }
  close(claim);
  if (rename(part_.constData(), place_.constData()) == 0) {
    return true;
  }
  const int error = errno;
  unlink(place_.constData());
  errno = error;
  return false;
}

int replaceFile(const QString& path, const QByteArray& bytes) {
  NewFile file(path);
  if (!file.create(path) || !file.write(bytes.constData(), bytes.size()) || !file.sync() ||
      !file.replace()) {
    return file.error();
  }
  syncFolderOf(path);
  return 0;
}

void syncFolderOf(const QString& path) {
  const QByteArray folder = QFile::encodeName(QFileInfo(path).path());
  const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor >= 0) {
    fsync(descriptor);
    close(descriptor);
  }
}
