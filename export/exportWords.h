#pragma once

#include "export/exportMany.h"

#include <QString>

/// What the user is told of exports, in sentences that every front end shares.
namespace exportWords {

/// Why a run does not become a file; null for None.
QString reason(ExportFailure failure);
/// What became of many runs, in one line: written, skipped, failed and which.
QString ending(const ManyRunsResult& result);

}  // namespace exportWords
