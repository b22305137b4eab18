#include "export/exportMany.h"

#include "base/detachThread.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "data/newFile.h"
#include "data/pointLocator.h"
#include "export/fileWriter.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSet>

#include <cerrno>

Q_LOGGING_CATEGORY(logMany, "trakko.export", QtInfoMsg)

namespace {

class Folder {
 public:
  Folder(const QString& path, bool replace) : path_(path + u'/'), replace_(replace) {}
  // One for all: a name that a power cut takes back costs nothing that cannot be written again, but
  // syncing a folder for each of a thousand files costs more than the files.
  ~Folder() { syncFolderOf(path_); }
  Q_DISABLE_COPY_MOVE(Folder)

  bool isTaken(const QString& name) const {
    return names_.contains(name) || (!replace_ && QFile::exists(path_ + name));
  }

  /// 0, or the errno of what the system refused.
  int write(const QString& name, const QByteArray& bytes) {
    const QString file = path_ + name;
    names_.insert(name);
    if (replace_ && QFile::exists(file)) {
      return writeFileAtomically(file, bytes) ? 0 : EIO;
    }
    NewFile made(file);
    if (made.create(QString()) && made.write(bytes.constData(), bytes.size()) && made.sync() &&
        made.placeIfFree()) {
      return 0;
    }
    qCWarning(logMany).noquote() << "cannot write" << file << '-' << qt_error_string(made.error());
    return made.error();
  }

 private:
  QString path_;
  bool replace_;
  QSet<QString> names_;  ///< Of this time: of two runs with one name the second must not be lost.
};

/// A restored database may hold any start time; it must not lead out of the folder.
QString nameInFolder(const QString& startTime, ExportFormat format) {
  return exportFileName(startTime, format).remove(u'/').remove(QChar::Null) + u'.' +
         formatName(format);
}

void writeAll(const ManyRuns& runs, const QString& offset,
              const std::function<bool(qsizetype done)>& goOn, ManyRunsResult& result) {
  // Each run's points are then read where they lie; without, every run reads through all points.
  if (runs.numbers.size() > 1) {
    pointLocator::locate(databasePath(mainBundle()));
  }
  dataControl store;
  Folder folder(runs.folder, runs.replace);
  qsizetype done = 0;
  for (const qint64 number : runs.numbers) {
    if (!goOn(done++)) {
      result.cancelled = true;
      break;
    }
    const QString name = nameInFolder(store.GetTrackName(number), runs.format);
    if (folder.isTaken(name)) {
      ++result.skipped;
      continue;
    }
    const RunDocument document =
        exportRun(readRun(store, number, runs.format), runs.format, offset);
    if (document.failure != ExportFailure::None) {
      result.failed.append({number, document.failure});
      continue;
    }
    switch (folder.write(name, document.bytes)) {
      case 0:
        ++result.written;
        break;
      case EEXIST:
        ++result.skipped;  // another program was quicker
        break;
      default:
        result.failed.append({number, ExportFailure::NotWritten});
    }
  }
}

}  // namespace

ManyRunsResult exportMany(const ManyRuns& runs, const QString& offset,
                          const std::function<bool(qsizetype done)>& goOn) {
  ManyRunsResult result;
  result.brokenOff = true;
  runGuarded("export", [&] {
    writeAll(runs, offset, goOn, result);
    result.brokenOff = false;
  });
  return result;
}
