#include "tests/faults/powerCut.h"

#include <array>
#include <map>
#include <sqlite3.h>

namespace {

constexpr qsizetype sector = 512;

struct OpenFile {
  const sqlite3_io_methods* real;
  sqlite3_io_methods recording;
  QString name;
};

std::map<sqlite3_file*, OpenFile> files;
sqlite3_vfs* realLayer = nullptr;

void note(DiskOperation operation) {
  operation.stored = storedRuns;
  diskOperations().append(operation);
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
  const OpenFile& open = files.at(file);
  note({DiskOperation::Kind::write, open.name, at, {static_cast<const char*>(bytes), count}});
  return open.real->xWrite(file, bytes, count, at);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  const OpenFile& open = files.at(file);
  note({DiskOperation::Kind::truncate, open.name, size, {}});
  return open.real->xTruncate(file, size);
}

int syncFile(sqlite3_file* file, int flags) {
  const OpenFile& open = files.at(file);
  note({DiskOperation::Kind::sync, open.name, 0, {}});
  return open.real->xSync(file, flags);
}

int closeFile(sqlite3_file* file) {
  const sqlite3_io_methods* real = files.at(file).real;
  files.erase(file);
  return real->xClose(file);
}

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* answered) {
  const int result = realLayer->xOpen(realLayer, name, file, flags, answered);
  if (result == SQLITE_OK) {
    OpenFile& open = files[file];
    open = {file->pMethods, *file->pMethods, QString::fromUtf8(name)};
    open.recording.xWrite = writeFile;
    open.recording.xTruncate = truncateFile;
    open.recording.xSync = syncFile;
    open.recording.xClose = closeFile;
    file->pMethods = &open.recording;
  }
  return result;
}

int removeFile(sqlite3_vfs*, const char* name, int syncFolder) {
  note({DiskOperation::Kind::remove, QString::fromUtf8(name), 0, {}, syncFolder != 0});
  return realLayer->xDelete(realLayer, name, syncFolder);
}

void change(QHash<QString, QByteArray>& disk, const DiskOperation& operation, qsizetype count) {
  QByteArray& bytes = disk[operation.file];
  if (operation.kind == DiskOperation::Kind::truncate) {
    bytes.truncate(operation.at);
    return;
  }
  bytes.resize(qMax(bytes.size(), operation.at + count), '\0');
  bytes.replace(operation.at, count, operation.bytes.first(count));
}

}  // namespace

QList<DiskOperation>& diskOperations() {
  static QList<DiskOperation> operations;
  return operations;
}

void recordDisk() {
  static sqlite3_vfs layer;
  realLayer = sqlite3_vfs_find(nullptr);
  layer = *realLayer;
  layer.zName = "recording";
  layer.xOpen = openFile;
  layer.xDelete = removeFile;
  sqlite3_vfs_register(&layer, 1);
}

void Disk::apply(const DiskOperation& operation) {
  const auto ofThisFile = [&](const DiskOperation& one) { return one.file == operation.file; };
  switch (operation.kind) {
    case DiskOperation::Kind::write:
    case DiskOperation::Kind::truncate:
      change(now, operation, operation.bytes.size());
      unsynced_.append(operation);
      break;
    case DiskOperation::Kind::sync:
      safe[operation.file] = now[operation.file];
      unsynced_.removeIf(ofThisFile);
      break;
    case DiskOperation::Kind::remove:
      now.remove(operation.file);
      unsynced_.removeIf(ofThisFile);
      if (operation.durable) {
        safe.remove(operation.file);
      }
      break;
  }
}

QHash<QString, QByteArray> Disk::afterCut(Lost lost, std::mt19937& random) const {
  if (lost == Lost::nothing) {
    return now;
  }
  QHash<QString, QByteArray> left = safe;
  if (lost == Lost::anything) {
    for (const DiskOperation& operation : unsynced_) {
      const qsizetype size = operation.bytes.size();
      const qsizetype torn = qsizetype(random()) % (size / sector + 1) * sector;
      const qsizetype kept = std::array{qsizetype{0}, torn, size}[random() % 3];
      if (kept > 0 || (operation.kind == DiskOperation::Kind::truncate && random() % 2 == 0)) {
        change(left, operation, kept);
      }
    }
    for (const QString& file : safe.keys()) {
      if (!now.contains(file) && random() % 2 == 0) {
        left.remove(file);  // the removal may have reached the disk without a sync
      }
    }
  }
  return left;
}
