#include "data/rows.h"

#include "base/text.h"

#include <QVarLengthArray>

#include <algorithm>
#include <charconv>
#include <sqlite3.h>

namespace {

constexpr qint64 manyRows = 100;
constexpr std::size_t manyPlaces = 256;  // of a column's texts, once there are many rows

std::size_t placeOf(std::string_view characters, std::size_t places) {
  std::size_t place = 0;
  for (const char c : characters) {
    place = place * 31 + static_cast<unsigned char>(c);
  }
  return place % places;
}

/// Nearly every text is ASCII, which needs no decoding.
QString decoded(QByteArrayView utf8) {
  const bool ascii = std::none_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) != 0; });
  return ascii ? QString::fromLatin1(utf8) : QString::fromUtf8(utf8);
}

}  // namespace

Rows::Rows(sqlite3* connection, const QByteArray& sql)
    : connection_(connection),
      statement_(prepare(connection, sql.constData())),
      failed_(statement_ == nullptr),
      known_(static_cast<std::size_t>(sqlite3_column_count(statement_.get()))) {
  if (failed_ && connection != nullptr) {
    qCWarning(dataLog, "%s: %s", sql.constData(), sqlite3_errmsg(connection));
  }
}

bool Rows::next() {
  if (failed_) {
    return false;
  }
  const int result = sqlite3_step(statement_.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    failed_ = true;
    qCWarning(dataLog, "%s: %s", sqlite3_sql(statement_.get()), sqlite3_errmsg(connection_));
  }
  ++read_;
  return result == SQLITE_ROW;
}

QByteArrayView Rows::characters(int column) {
  if (column >= static_cast<int>(known_.size())) {
    return {};
  }
  const unsigned char* value = sqlite3_column_text(statement_.get(), column);
  return value == nullptr ? QByteArrayView() : QByteArrayView(reinterpret_cast<const char*>(value));
}

QString Rows::text(int column) {
  const QByteArrayView value = characters(column);
  if (value.isNull()) {
    return {};
  }
  KnownTexts& texts = known_[static_cast<std::size_t>(column)];
  texts.resize(read_ < manyRows ? 1 : manyPlaces);
  const std::string_view view(value.data(), static_cast<std::size_t>(value.size()));
  Known& known = texts[placeOf(view, texts.size())];
  if (known.text.isNull() || known.characters != view) {
    known.characters = view;
    known.text = decoded(value);
  }
  return known.text;
}

qint64 Rows::integer(int column) {
  const QByteArrayView value = characters(column);
  qint64 number = 0;
  const auto read = std::from_chars(value.begin(), value.end(), number);
  const bool whole = read.ec == std::errc() && read.ptr == value.end();
  return whole ? number : text::toInteger(text(column));
}

QString Rows::joined(int first, int second) {
  QVarLengthArray<char, 48> key;
  const auto append = [&](int column) {
    const QByteArrayView value = characters(column);
    const QByteArrayView shown = value.isNull() ? QByteArrayView("(null)") : value;
    key.append(shown.begin(), shown.size());
  };
  append(first);
  key.append('-');
  append(second);
  return decoded(QByteArrayView(key.constData(), key.size()));
}
