// The controller's commands that export a run.

#include "app/TrakkoAppDelegate.h"
#include "data/dataControl.h"
#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/offsetText.h"
#include "export/runExport.h"

#include <QDateTime>

namespace {

QString withT(const QString& startTime) {
  return QString(startTime).replace(u' ', u'T');
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
    showStatus(QStringLiteral("書き出すランがありません。"));
    return;
  }
  dataControl store;
  const RunToExport run = readRun(store, currentNumber, ExportFormat::Gpx);
  pointDic = run.points;
  myTrackName = withT(run.startTime);
  if (!run.wasRead || pointDic.size() < fewestGpxPoints) {
    showStatus(run.wasRead ? QStringLiteral("トラックポイントが少ないため、GPX に書き出せません。")
                           : QStringLiteral("データベースを読み取れないため、書き出せません。"),
               Verdict::failure);
    return;
  }
  saveFile(convertGPX(myTrackName), exportFileName(run.startTime, ExportFormat::Gpx),
           formatName(ExportFormat::Gpx));
}

void TrakkoAppDelegate::saveFile(const QByteArray& data, const QString& fileName,
                                 const QString& fileType) {
  const QString path =
      context_.dialogs->fileToSave(QStringLiteral("Save File"), fileName, fileType);
  if (path.isNull()) {
    return;
  }
  if (data.isNull()) {
    showStatus(currentNumber < 1
                   ? QStringLiteral("書き出すランがありません。")
                   : QStringLiteral("開始日時がないか、データベースを読み取れないため、"
                                    "このランは書き出せません。"),
               Verdict::failure);
    return;
  }
  const bool written = writeFileAtomically(path, data);
  showStatus(written ? QStringLiteral("「%1」に保存しました。").arg(path)
                     : QStringLiteral("「%1」に保存できませんでした。").arg(path),
             written ? Verdict::done : Verdict::failure);
}
