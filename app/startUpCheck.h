#pragma once

#include "data/bundle.h"

#include <QString>

/// What keeps the database beside the bundle from being used, as a message for the user; null when
/// nothing does. Reads the file's first bytes only and changes nothing.
QString startUpProblem(const Bundle& bundle);

/// True when the file can be read and does not begin as a database does. Not for the database in
/// use: closing the file gives up the locks that this process holds on it.
bool isNoDatabase(const QString& path);
