#pragma once

#include "data/records.h"
#include "export/exportMany.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class QProgressDialog;
class StatusLine;

/// Exports many runs on a thread of its own, with the progress and a way to stop over the window,
/// and the outcome in the line at the bottom. Main thread.
class ManyExport : public QObject {
  Q_OBJECT

 public:
  ManyExport(QWidget* window, StatusLine* line);

  /// Returns at once. One at a time: while one runs, nothing happens. `names` are told of runs that
  /// fail.
  void start(const ManyRuns& runs, const QString& offset, const QHash<qint64, QString>& names);

 private:
  void showProgress(qsizetype all);
  void end();
  void finish(const ManyRunsResult& result, const QString& folder);

  QWidget* window_;
  StatusLine* line_;
  QHash<qint64, QString> names_;
  QPointer<QProgressDialog> progress_;
  std::shared_ptr<std::atomic<bool>> goesOn_;  ///< Null when nothing runs.
};

/// The numbers of the runs that started in the days given (both invalid: of all), in the order of
/// the keys.
QList<qint64> runsWithin(const RunDictionary& runs, const QStringList& keys, QDate first,
                         QDate last);

/// One line that tells what became of an export.
QString outcomeOf(const ManyRunsResult& result, const QString& folder,
                  const QHash<qint64, QString>& names);
