#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

/// Keeps the lines of a download in the file `path`, one line of text each, so that a run which
/// does not reach the database still exists somewhere when the watch has been erased.
///
/// The file is replaced as a whole and on the disk when this returns; on failure the file that was
/// there stays. A null text on success, else the reason (for the log). Any thread.
QString keepDownload(const QString& path, const QStringList& lines);

/// Where keepForGood() put the lines.
struct LastingCopy {
  QString path;   ///< Null when they could not be kept.
  QString error;  ///< The reason then, for the log.
};

/// Keeps the lines of a download, which keepDownload() has kept in `path` as a rule, under a name
/// beside `path` that no later download takes: that of the local time `end` when the download ended
/// ("lastDownload-20240518063001.txt"). Lines that are kept so already are not kept twice. On the
/// disk when this returns. Any thread.
LastingCopy keepForGood(const QString& path, const QStringList& lines, const QDateTime& end);
