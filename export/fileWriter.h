#pragma once

#include <QByteArray>
#include <QString>

/// Writes `bytes` to `path` as a whole or not at all. True when the file is there, safe on the
/// disk. Otherwise an older file at `path` is untouched, nothing is left beside it and the reason
/// is logged. A file that may not be written is not replaced either. Any thread.
bool writeFileAtomically(const QString& path, const QByteArray& bytes);
