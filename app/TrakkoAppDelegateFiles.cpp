// The controller's commands that write and read files: exports, backup and restore.

#include "app/DFView.h"
#include "app/TrakkoAppDelegate.h"
#include "app/startUpCheck.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "data/databaseFile.h"
#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/offsetText.h"
#include "export/runExport.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcFiles, "trakko.files", QtInfoMsg)

namespace {

QString withT(const QString& startTime) {
  return QString(startTime).replace(u' ', u'T');
}

/// Why it failed, as the end of a sentence; null when it did not.
QString reason(databaseFile::Failure failure) {
  using databaseFile::Failure;
  switch (failure) {
    case Failure::none:
      break;
    case Failure::unreadable:
      return QStringLiteral("ファイルを読み込めません。");
    case Failure::exists:
      return QStringLiteral("同じ名前のファイルが既にあります。");
    case Failure::busy:
      return QStringLiteral("データベースは使用中です。");
    case Failure::unwritable:
      return QStringLiteral("ファイルを書き込めません。空き容量とアクセス権を確認して下さい。");
  }
  return {};
}

QString restoredNoDatabase(const QString& chosen, const QString& database) {
  const QString told = QStringLiteral("「%1」はデータベースではないか、壊れています。").arg(chosen);
  const QFileInfo kept(databaseFile::beforeRestore(database));
  return kept.exists()
             ? told + QStringLiteral("復元前のデータは「%1」にあります。").arg(kept.fileName())
             : told;
}

}  // namespace

QByteArray TrakkoAppDelegate::convertTCX(qint64 /*number*/) {
  if (currentNumber < 1) {
    return {};
  }
  dataControl store;
  const RunToExport run = readRun(store, currentNumber, ExportFormat::Tcx);
  pointDic = run.points;
  lapDic = run.laps;
  myTrackName = withT(run.startTime);
  return exportRun(run, ExportFormat::Tcx, offsetNow()).bytes;
}

void TrakkoAppDelegate::SaveTCXFile() {
  const QByteArray data = convertTCX(currentNumber);
  saveFile(data, exportFileName(myTrackName, ExportFormat::Tcx), formatName(ExportFormat::Tcx));
}

QByteArray TrakkoAppDelegate::convertGPX(const QString& startStamp) {
  return writeGpx(pointDic, currentNumber, startStamp, offsetNow());
}

void TrakkoAppDelegate::saveGPXFile() {
  if (currentNumber <= 0) {
    return;
  }
  dataControl store;
  const RunToExport run = readRun(store, currentNumber, ExportFormat::Gpx);
  pointDic = run.points;
  myTrackName = withT(run.startTime);
  if (pointDic.size() >= fewestGpxPoints) {
    saveFile(convertGPX(myTrackName), exportFileName(run.startTime, ExportFormat::Gpx),
             formatName(ExportFormat::Gpx));
  }
}

void TrakkoAppDelegate::saveFile(const QByteArray& data, const QString& fileName,
                                 const QString& fileType) {
  const QString path = context.dialogs->fileToSave(QStringLiteral("Save File"), fileName, fileType);
  if (path.isNull() || data.isNull()) {
    return;
  }
  showStatus(writeFileAtomically(path, data)
                 ? QStringLiteral("「%1」に保存しました。").arg(path)
                 : QStringLiteral("「%1」に保存できませんでした。").arg(path));
}

void TrakkoAppDelegate::BackupData() {
  const QString name = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddHHmmss"));
  const QString path =
      context.dialogs->fileToSave(QStringLiteral("Backup Data"), name, QStringLiteral("db3"));
  if (path.isNull()) {
    return;
  }
  report(databaseFile::backUp(databasePath(mainBundle()), path),
         QStringLiteral("「%1」にバックアップしました。").arg(path),
         QStringLiteral("バックアップできませんでした"));
}

void TrakkoAppDelegate::RecoverData() {
  const QString path =
      context.dialogs->fileToOpen(QStringLiteral("Recover Data"), QStringLiteral("db3"));
  if (path.isNull()) {
    return;
  }
  const QString database = databasePath(mainBundle());
  // Looked at before it takes the place: opening and closing the database here would give up the
  // locks of a download.
  const bool wrong = QFileInfo(path) != QFileInfo(database) && isNoDatabase(path);
  const databaseFile::Result result = databaseFile::restore(database, path);
  // Any file may be chosen; one that is no database is taken, and told of.
  report(result,
         wrong ? restoredNoDatabase(path, database)
               : QStringLiteral("「%1」から復元しました。").arg(path),
         QStringLiteral("復元できませんでした"));
  getNewData = 1;
  startRefresh();
  viewMonth->update();
}

// Neither command shows a box; what became of it stands in the status bar and in the log.
void TrakkoAppDelegate::report(const databaseFile::Result& result, const QString& done,
                               const QString& failed) {
  if (result) {
    showStatus(done);
    return;
  }
  qCWarning(lcFiles).noquote() << failed << result.detail;
  showStatus(failed + QStringLiteral("：") + reason(result.failure));
}
