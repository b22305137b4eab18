#include "data/rowValues.h"

#include "base/text.h"

#include <sqlite3.h>

namespace {

qint64 numberOf(qint64 value, bool lowerHalf) {
  return lowerHalf ? static_cast<qint32>(value) : value;
}

}  // namespace

template <typename Record>
void RowValues::take(const Insertion<Record>& insertion, const Record& record) {
  characters_.clear();
  values_.clear();
  for (const Column<Record>& column : insertion.columns) {
    Value value{0, 0, false};
    const auto* const member = std::get_if<QString Record::*>(&column.value);
    if (member != nullptr && !column.lowerHalf) {
      text::appendShown(characters_, record.**member);
      value.isText = true;
    } else if (member != nullptr) {
      value.number = numberOf(text::toInteger(record.**member), true);
    } else if (const auto* const narrow = std::get_if<qint32 Record::*>(&column.value)) {
      value.number = record.**narrow;
    } else {
      value.number = numberOf(record.*std::get<qint64 Record::*>(column.value), column.lowerHalf);
    }
    value.end = characters_.size();
    values_.push_back(value);
  }
}

QByteArray RowValues::printed() const {
  QByteArray out;
  qsizetype start = 0;
  for (const Value& value : values_) {
    if (value.isText) {
      out.append('\'').append(QByteArrayView(characters_).sliced(start, value.end - start));
      out.append('\'');
    } else {
      text::appendNumber(out, value.number);
    }
    out.append(',');
    start = value.end;
  }
  out.chop(1);
  return out;
}

bool RowValues::bindTo(sqlite3_stmt* statement) const {
  int parameter = 0;
  qsizetype start = 0;
  int result = SQLITE_OK;
  for (const Value& value : values_) {
    ++parameter;
    result |= value.isText ? sqlite3_bind_text(statement, parameter, characters_.data() + start,
                                               static_cast<int>(value.end - start), SQLITE_STATIC)
                           : sqlite3_bind_int64(statement, parameter, value.number);
    start = value.end;
  }
  return result == SQLITE_OK;
}

template <typename Record>
QByteArray head(const Insertion<Record>& insertion) {
  QByteArray out(insertion.opening);
  for (const Column<Record>& column : insertion.columns) {
    out.append(column.name).append(',');
  }
  out.chop(1);
  return out.append(insertion.closing);
}

template void RowValues::take(const Insertion<runData>&, const runData&);
template void RowValues::take(const Insertion<lapData>&, const lapData&);
template void RowValues::take(const Insertion<trackData>&, const trackData&);
template void RowValues::take(const Insertion<trackPointData>&, const trackPointData&);
template QByteArray head(const Insertion<runData>&);
template QByteArray head(const Insertion<lapData>&);
template QByteArray head(const Insertion<trackData>&);
template QByteArray head(const Insertion<trackPointData>&);
