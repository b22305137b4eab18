#pragma once

#include "export/runExport.h"

#include <QList>
#include <QString>

#include <functional>

/// Many runs, each to a file of its own.
struct ManyRuns {
  QList<qint64> numbers;  ///< In the order in which they are written.
  ExportFormat format = ExportFormat::Tcx;
  QString folder;        ///< It exists.
  bool replace = false;  ///< Files of the same names that are there give way; else they are kept.
};

/// What became of them.
struct ManyRunsResult {
  struct Failed {
    qint64 number = 0;
    ExportFailure failure = ExportFailure::None;
  };

  qsizetype written = 0;
  qsizetype skipped = 0;  ///< A file of that name was there, or another run took the name before.
  QList<Failed> failed;
  bool cancelled = false;  ///< Not all were tried.
  bool brokenOff = false;  ///< Nor then: an error inside the program ended it.
};

/// Writes the runs, one after another; no more than one is in memory. Every file is there as a
/// whole or not at all, and safe on the disk when this returns. The files have the names that a
/// single export offers; `goOn` is called before each run with the number of those done and answers
/// false to end it there. An exception ends it as well; it is logged and told like one that ends a
/// thread, and what was written until then counts. Any thread.
ManyRunsResult exportMany(const ManyRuns& runs, const QString& offset,
                          const std::function<bool(qsizetype done)>& goOn);
