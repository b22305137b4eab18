#include "data/recordWriter.h"

#include <sqlite3.h>

namespace {

/// The statement with a parameter for each value.
template <typename Record>
PreparedStatement compile(sqlite3* connection, const Insertion<Record>& insertion) {
  const auto parameters = static_cast<qsizetype>(insertion.columns.size());
  const QByteArray sql = head(insertion) + QByteArray("?,").repeated(parameters).chopped(1) + ");";
  return prepare(connection, sql.constData());
}

}  // namespace

template <typename Record>
bool RecordWriter::store(const Insertion<Record>& insertion, const Record& record,
                         PreparedStatement& insert) {
  values_.take(insertion, record);
  if (insert == nullptr) {
    insert = compile(connection_, insertion);
  }
  bool stored = false;
  if (insert != nullptr && values_.readBack() && values_.bindTo(insert.get())) {
    sqlite3_step(insert.get());
    stored = sqlite3_reset(insert.get()) == SQLITE_OK;
  } else {
    const QByteArray sql = head(insertion) + values_.printed() + ");";
    stored = execute(connection_, sql.constData());
  }
  if (!stored) {
    logFailure(connection_, (head(insertion) + values_.printed() + ");").constData());
  }
  return stored;
}

template bool RecordWriter::store(const Insertion<runData>&, const runData&, PreparedStatement&);
template bool RecordWriter::store(const Insertion<lapData>&, const lapData&, PreparedStatement&);
template bool RecordWriter::store(const Insertion<trackPointData>&, const trackPointData&,
                                  PreparedStatement&);
