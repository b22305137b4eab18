#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// A file in the making. It is written under another name beside its place and takes that place
/// only as a whole, safe on the disk; dropped before, it leaves nothing behind. A process that is
/// killed leaves the unfinished file, named after its place with ".part" at the end.
///
/// The operations answer false when the system refuses; `error()` then says why. Any thread, one at
/// a time.
class NewFile {
 public:
  explicit NewFile(const QString& place);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Creates the unfinished file, with the permissions of `like` when that is there; its owner can
  /// read and write it in any case.
  bool create(const QString& like);
  /// Makes the unfinished file a second name of `existing`; not every file system can.
  bool linkTo(const QString& existing);
  bool write(const char* bytes, qsizetype size);
  /// Bytes of what create() has made.
  qint64 size() const;
  /// Reads `count` of them at `offset`, all or false.
  bool read(char* bytes, int count, qint64 offset) const;
  /// Waits until everything written is on the disk.
  bool sync();
  /// Takes the place, if need be from an older file.
  bool replace();
  /// Takes the place unless a file is there already; error() is EEXIST then.
  bool placeIfFree();

  /// The errno of the refused operation.
  int error() const { return error_; }

  /// Removes what killed processes have left unfinished of `place`.
  static void removeLeftovers(const QString& place);

 private:
  QByteArray place_;
  QByteArray part_;
  int descriptor_ = -1;
  int error_ = 0;

  bool check(bool succeeded);
  bool underFreeName(const std::function<bool(const char*)>& make);
  bool renameIfFree();
};

/// Makes `bytes` the whole contents of the file `path`, or changes nothing. On the disk, its name
/// too, when this returns 0; else the errno of what the system refused. Any thread.
int replaceFile(const QString& path, const QByteArray& bytes);

/// Puts the names in the folder of `path` safe on the disk, as far as its file system can.
void syncFolderOf(const QString& path);
