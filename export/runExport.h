#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

class dataControl;

// From a stored run to the bytes and the name of a file: what the window's commands and the command
// line have in common.

enum class ExportFormat { Tcx, Gpx };

/// "TCX" or "GPX": what the format is called, and the extension of its files.
QString formatName(ExportFormat format);

/// A track of fewer points is no GPX file.
inline constexpr qsizetype fewestGpxPoints = 3;

/// The name that is offered for the file of a run, without folder and extension: 2014-05-01
/// 07:30:00 gives "20140501073000".
QString exportFileName(const QString& startTime, ExportFormat format);

/// What a document is made of, as the store holds it.
struct RunToExport {
  qint64 number = 0;
  LapDictionary laps;  ///< Empty for GPX, which has none.
  PointDictionary points;
  QString startTime;    ///< "yyyy-MM-dd HH:mm:ss"; "" where there is no such run.
  bool wasRead = true;  ///< Else what is here may be half of it.
};

/// Reads a run. Belongs to the thread of `store`.
RunToExport readRun(dataControl& store, qint64 number, ExportFormat format);

/// Why a run does not become a file.
enum class ExportFailure {
  None,
  NotRead,  ///< The store could not be asked; what it holds may be fine.
  NoSuchRun,
  NoStartTime,   ///< It is too short to hold a date, which every time of the document needs.
  TooFewPoints,  ///< For a GPX file.
  NotWritten,    ///< The file could not be written; the log tells why.
};

struct RunDocument {
  QByteArray bytes;  ///< Null where there is a failure.
  ExportFailure failure = ExportFailure::None;
};

/// The run as a document; `offset` comes from offsetText(). Pure; any thread.
RunDocument exportRun(const RunToExport& run, ExportFormat format, const QString& offset);
