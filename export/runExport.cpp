#include "export/runExport.h"

#include "data/dataControl.h"
#include "export/gpxWriter.h"
#include "export/tcxWriter.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

ExportFailure failureOf(const RunToExport& run, ExportFormat format, const QByteArray& bytes) {
  if (!run.wasRead) {
    return ExportFailure::NotRead;
  }
  if (run.number < 1 || (run.startTime == u""_s && !run.startTime.isNull())) {
    return ExportFailure::NoSuchRun;
  }
  if (format == ExportFormat::Gpx && run.points.size() < fewestGpxPoints) {
    return ExportFailure::TooFewPoints;
  }
  return bytes.isNull() ? ExportFailure::NoStartTime : ExportFailure::None;
}

}  // namespace

QString formatName(ExportFormat format) {
  return format == ExportFormat::Tcx ? u"TCX"_s : u"GPX"_s;
}

QString exportFileName(const QString& startTime, ExportFormat format) {
  return format == ExportFormat::Tcx ? tcxFileName(startTime) : gpxFileName(startTime);
}

RunToExport readRun(dataControl& store, qint64 number, ExportFormat format) {
  const auto key = static_cast<qint32>(number);
  RunToExport run;
  run.number = number;
  run.points = store.getTrackData(key);
  if (format == ExportFormat::Tcx) {
    run.laps = store.getLapData(key);
  }
  run.startTime = store.GetTrackName(number);
  run.wasRead = !std::exchange(store.queryFailed, false);
  return run;
}

RunDocument exportRun(const RunToExport& run, ExportFormat format, const QString& offset) {
  const QByteArray bytes = format == ExportFormat::Tcx
                               ? writeTcx(run.laps, run.points, run.number, run.startTime, offset)
                               : writeGpx(run.points, run.number, run.startTime, offset);
  const ExportFailure failure = failureOf(run, format, bytes);
  return {failure == ExportFailure::None ? bytes : QByteArray(), failure};
}
