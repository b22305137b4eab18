#pragma once

#include <QString>
#include <QStringView>
#include <QVarLengthArray>

/// Puts a short text together without an allocation for each of its parts; a download makes a dozen
/// such texts for every track point.
class TextBuilder {
 public:
  TextBuilder& append(QStringView part);
  TextBuilder& append(char16_t character);
  /// Decimal, with zeros in front as far as it has fewer digits than `width`.
  TextBuilder& number(quint64 value, qsizetype width = 1);
  /// As printf's "%02d".
  TextBuilder& twoDigits(qint64 value);
  /// A number of millionths as a decimal number with six places.
  TextBuilder& millionths(quint64 value);
  /// The byte as a Latin-1 character. A zero byte adds nothing: names are padded with zeros.
  TextBuilder& character(quint64 byte);
  /// "HH:MM:SS".
  TextBuilder& clock(qint64 hours, qint64 minutes, qint64 seconds);
  QString text() const { return QStringView(text_.data(), text_.size()).toString(); }

 private:
  QVarLengthArray<char16_t, 64> text_;
};

/// The decimal form of `value`.
inline QString decimalText(quint64 value) {
  return TextBuilder().number(value).text();
}
