#pragma once

#include "data/databaseFile.h"
#include "data/heldDatabase.h"
#include "data/newFile.h"

#include <QString>

// What backup and restore of the database have in common.
namespace databaseFile {

Result unreadable(const QString& detail);
/// With the errno of the refused operation.
Result unwritable(int error);

/// False only when there is certainly nothing of that name.
bool isThere(const QString& path);
/// Opening anything else could wait for ever.
bool isPlainFile(const QString& path);
bool isSameFile(const QString& one, const QString& other);
bool isNoDatabase(const HeldDatabase& held);

/// Copies the bytes of the held file into the file in the making, with the permissions of `like`.
Result copyHeld(const HeldDatabase& held, const QString& like, NewFile& copy,
                const Watcher& watcher);

/// Reads `count` bytes at `offset`, all of them or false.
using Reader = std::function<bool(char* bytes, int count, qint64 offset)>;
/// Whether the bytes of the held file are those that `other` reads, `size` of them.
bool isEqual(const HeldDatabase& held, qint64 size, const Reader& other);

}  // namespace databaseFile
