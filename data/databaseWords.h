#pragma once

#include "data/databaseFile.h"

#include <QString>

/// What the user is told of backup and restore, in sentences that every front end shares.
namespace databaseWords {

/// Why it failed, as the end of a sentence; null when it did not.
QString reason(databaseFile::Failure failure);
/// What speaks against a file that is to be restored; null when nothing does. Of what is no file at
/// all the restore itself tells.
QString doubtAbout(const QString& chosen, schemaCheck::Finding finding);
/// Where the data from before a restore are, as a sentence; null when none were kept.
QString whereKept(const databaseFile::Result& restored);

}  // namespace databaseWords
