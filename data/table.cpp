#include "data/table.h"

#include "base/text.h"
#include "data/connection.h"

#include <QVarLengthArray>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <sqlite3.h>

namespace {

/// Nearly every text is ASCII, which needs no decoding.
QString decoded(QByteArrayView utf8) {
  const bool ascii = std::none_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) != 0; });
  return ascii ? QString::fromLatin1(utf8) : QString::fromUtf8(utf8);
}

}  // namespace

Table::Table(sqlite3* connection, const QByteArray& sql) {
  const PreparedStatement statement = prepare(connection, sql.constData());
  if (statement == nullptr) {
    return;
  }
  columns_ = sqlite3_column_count(statement.get());
  int result = sqlite3_step(statement.get());
  for (; result == SQLITE_ROW; result = sqlite3_step(statement.get())) {
    append(statement.get());
    ++rows_;
  }
  if (result != SQLITE_DONE) {
    qCWarning(dataLog, "%s: %s", sql.constData(), sqlite3_errmsg(connection));
    rows_ = 0;
  }
}

void Table::append(sqlite3_stmt* statement) {
  for (int column = 0; column < columns_; ++column) {
    if (const unsigned char* value = sqlite3_column_text(statement, column)) {
      const auto* first = reinterpret_cast<const char*>(value);
      characters_.append(first, std::strlen(first) + 1);
    }
    starts_.push_back(characters_.size());
  }
}

QByteArrayView Table::Row::characters(int column) const {
  if (column >= table_.columns_) {
    return {};
  }
  const auto cell = static_cast<std::size_t>(number_ * table_.columns_ + column);
  const std::size_t start = table_.starts_[cell];
  const std::size_t end = table_.starts_[cell + 1];
  return start == end ? QByteArrayView()
                      : QByteArrayView(table_.characters_.data() + start,
                                       static_cast<qsizetype>(end - start) - 1);
}

QString Table::Row::text(int column) const {
  const QByteArrayView value = characters(column);
  return value.isNull() ? QString() : decoded(value);
}

qint64 Table::Row::integer(int column) const {
  const QByteArrayView value = characters(column);
  qint64 number = 0;
  const auto read = std::from_chars(value.begin(), value.end(), number);
  const bool whole = read.ec == std::errc() && read.ptr == value.end();
  return whole ? number : text::toInteger(text(column));
}

QString Table::Row::joined(int first, int second) const {
  const auto shown = [this](int column) {
    const QByteArrayView value = characters(column);
    return value.isNull() ? QByteArrayView("(null)") : value;
  };
  QVarLengthArray<char, 48> key;
  key.append(shown(first).begin(), shown(first).size());
  key.append('-');
  key.append(shown(second).begin(), shown(second).size());
  return decoded(QByteArrayView(key.constData(), key.size()));
}
