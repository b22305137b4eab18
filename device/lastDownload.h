#pragma once

#include <QString>
#include <QStringList>

/// Keeps the lines of a download in the file `path`, one line of text each, so that a run which
/// does not reach the database still exists somewhere when the watch has been erased.
///
/// The file is replaced as a whole and on the disk when this returns; on failure the file that was
/// there stays. A null text on success, else the reason (for the log). Any thread.
QString keepDownload(const QString& path, const QStringList& lines);
