#pragma once

#include <QByteArray>
#include <QString>

/// Writes `bytes` to `path` as a whole or not at all: beside the file first, synced, then renamed
/// into place. True when the file is there. Otherwise an older file at `path` is untouched, nothing
/// is left beside it, the reason is logged and, when asked for, put into `error`. Any thread.
bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString* error = nullptr);
