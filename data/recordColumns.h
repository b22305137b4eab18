#pragma once

#include "data/records.h"

#include <span>
#include <variant>

/// One column of an INSERT statement, and where its value stands in the record.
template <typename Record>
struct Column {
  const char* name;  ///< As the statement spells it, some with a blank behind.
  std::variant<QString Record::*, qint32 Record::*, qint64 Record::*> value;
  /// Printed by a 32-bit conversion: the lower half of the number, or of what a text reads as.
  bool lowerHalf = false;
};

/// The INSERT statement of a kind of record: both its text and what is bound to the compiled one
/// come from here.
template <typename Record>
struct Insertion {
  const char* opening;  ///< What stands before the names of the columns.
  std::span<const Column<Record>> columns;
  const char* closing;  ///< What stands between the names and the values.
};

extern const Insertion<runData> runInsertion;
extern const Insertion<lapData> lapInsertion;
extern const Insertion<trackData> trackInsertion;
extern const Insertion<trackPointData> pointInsertion;
