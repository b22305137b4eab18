#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <random>

// A power cut at any moment. SQLite works on the real files through a layer that takes down each
// write, sync and removal; what a disk may hold after a cut is put together from these.

struct DiskOperation {
  enum class Kind { write, truncate, sync, remove };
  Kind kind;
  QString file;
  qint64 at = 0;        ///< Of a write; the new size of a truncation.
  QByteArray bytes;     ///< Of a write.
  bool durable = true;  ///< Of a removal: the folder was synced with it.
  qint64 stored = 0;    ///< storedRuns when it was done.
};

/// What the files hold at a moment, and what is sure to be on the disk then.
class Disk {
 public:
  enum class Lost { nothing, everything, anything };  ///< Of what was not synced.

  QHash<QString, QByteArray> now;   ///< By path.
  QHash<QString, QByteArray> safe;  ///< By path, as of the last syncs.

  void apply(const DiskOperation& operation);
  /// The files that a cut leaves. `anything`: each write since the last sync is there, missing or
  /// torn at a sector.
  QHash<QString, QByteArray> afterCut(Lost lost, std::mt19937& random) const;

 private:
  QList<DiskOperation> unsynced_;
};

/// From now on all of SQLite's writes in this process are taken down. Once.
void recordDisk();
/// What was taken down, in order.
QList<DiskOperation>& diskOperations();
/// How many runs the store has acknowledged; noted with each operation.
inline qint64 storedRuns = 0;
