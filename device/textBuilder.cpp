#include "device/textBuilder.h"

#include "base/text.h"

#include <array>
#include <memory>

TextBuilder& TextBuilder::append(QStringView part) {
  // One by one: the parts are far too short for a call to memmove to pay.
  for (const QChar character : part) {
    text_.append(character.unicode());
  }
  return *this;
}

TextBuilder& TextBuilder::append(char16_t character) {
  text_.append(character);
  return *this;
}

TextBuilder& TextBuilder::number(quint64 value) {
  std::array<char16_t, 20> digits{};
  auto first = digits.end();
  do {
    *--first = static_cast<char16_t>(u'0' + value % 10);
    value /= 10;
  } while (value != 0);
  return append(QStringView(std::to_address(first), digits.end() - first));
}

TextBuilder& TextBuilder::twoDigits(qint64 value) {
  if (value < 0 || value > 99) {
    return append(text::padded(value, 2));
  }
  digits(static_cast<quint64>(value), 10);
  return *this;
}

TextBuilder& TextBuilder::fiveDigits(qint64 value) {
  if (value < 0 || value > 99'999) {
    return append(text::padded(value, 5));
  }
  digits(static_cast<quint64>(value), 10'000);
  return *this;
}

TextBuilder& TextBuilder::millionths(quint64 value) {
  number(value / 1'000'000).append(u'.').digits(value % 1'000'000, 100'000);
  return *this;
}

TextBuilder& TextBuilder::character(quint64 byte) {
  if (byte != 0) {
    text_.append(static_cast<char16_t>(byte));
  }
  return *this;
}

TextBuilder& TextBuilder::clock(qint64 hours, qint64 minutes, qint64 seconds) {
  return twoDigits(hours).append(u':').twoDigits(minutes).append(u':').twoDigits(seconds);
}

void TextBuilder::digits(quint64 value, quint64 highestUnit) {
  for (quint64 unit = highestUnit; unit > 0; unit /= 10) {
    text_.append(static_cast<char16_t>(u'0' + value / unit % 10));
  }
}
