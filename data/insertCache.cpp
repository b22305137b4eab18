#include "data/insertCache.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sqlite3.h>

namespace {

/// The end of the quoted text or whole number at `start`; `start` itself when neither is there. A
/// number with more digits than any 64-bit integer of that length can hold counts as neither.
qsizetype literalEnd(QByteArrayView sql, qsizetype start) {
  constexpr qsizetype mostDigits = 18;
  if (sql[start] == '\'') {
    return sql.indexOf('\'', start + 1) + 1;
  }
  const qsizetype digits = sql[start] == '-' ? start + 1 : start;
  qsizetype end = digits;
  while (end < sql.size() && sql[end] >= '0' && sql[end] <= '9') {
    ++end;
  }
  return end > digits && end - digits <= mostDigits ? end : start;
}

/// Takes "1,'a',2);" apart. False when the text is anything else, up to its very end: a quote in a
/// text, say, which SQLite shall judge by itself.
bool split(QByteArrayView values, std::vector<QByteArrayView>& literals) {
  literals.clear();
  qsizetype at = 0;
  while (at < values.size()) {
    const qsizetype end = literalEnd(values, at);
    if (end <= at || end >= values.size()) {
      return false;
    }
    literals.push_back(values.sliced(at, end - at));
    if (values[end] != ',') {
      return values.sliced(end) == ");";
    }
    at = end + 1;
  }
  return false;
}

/// The length of "Insert Into ... Values (" at the start of the text, 0 when it has no such start
/// or holds a zero byte, at which SQLite would take it to end.
qsizetype headLength(QByteArrayView sql) {
  if (!sql.startsWith("Insert Into ") || sql.contains('\0')) {
    return 0;
  }
  const qsizetype values = sql.indexOf("Values");
  return values < 0 ? 0 : sql.indexOf('(', values) + 1;
}

/// Whether everything up to the values is names alone: no texts, comments, parameters, further
/// statements or queries, which could make another statement of the same values.
bool isPlain(QByteArrayView head) {
  const QByteArray lower = head.toByteArray().toLower();
  const auto contains = [&lower](const char* text) { return lower.contains(text); };
  constexpr std::array suspects{"?", ";", "'", ":", "@", "$", "--", "/*", "select"};
  return std::none_of(suspects.begin(), suspects.end(), contains);
}

int bind(sqlite3_stmt* statement, int parameter, QByteArrayView literal) {
  if (literal.front() == '\'') {
    return sqlite3_bind_text(statement, parameter, literal.data() + 1,
                             static_cast<int>(literal.size()) - 2, SQLITE_STATIC);
  }
  sqlite3_int64 number = 0;
  std::from_chars(literal.begin(), literal.end(), number);
  return sqlite3_bind_int64(statement, parameter, number);
}

}  // namespace

bool InsertCache::execute(const QByteArray& sql) {
  const qsizetype head = headLength(sql);
  if (head == 0 || !split(QByteArrayView(sql).sliced(head), literals_) ||
      !compile(QByteArrayView(sql).first(head)) || !bindValues()) {
    return ::execute(connection_, sql.constData());
  }
  sqlite3_step(insert_.get());
  return sqlite3_reset(insert_.get()) == SQLITE_OK;
}

bool InsertCache::compile(QByteArrayView head) {
  const auto parameters = static_cast<int>(literals_.size());
  if (head != head_ && !isPlain(head)) {
    return false;
  }
  if (head != head_ || sqlite3_bind_parameter_count(insert_.get()) != parameters) {
    head_ = head.toByteArray();
    const QByteArray sql = head_ + QByteArray("?,").repeated(parameters).chopped(1) + ");";
    insert_ = prepare(connection_, sql.constData());
  }
  return insert_ != nullptr && sqlite3_bind_parameter_count(insert_.get()) == parameters;
}

bool InsertCache::bindValues() {
  for (std::size_t i = 0; i < literals_.size(); ++i) {
    if (bind(insert_.get(), static_cast<int>(i) + 1, literals_[i]) != SQLITE_OK) {
      return false;
    }
  }
  return true;
}
