#include "device/textBuilder.h"

#include "base/text.h"

#include <array>
#include <charconv>

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

TextBuilder& TextBuilder::number(quint64 value, qsizetype width) {
  std::array<char, 20> digits{};
  const char* const end = std::to_chars(digits.begin(), digits.end(), value).ptr;
  for (qsizetype missing = width - (end - digits.begin()); missing > 0; --missing) {
    text_.append(u'0');
  }
  for (const char* digit = digits.begin(); digit != end; ++digit) {
    text_.append(static_cast<char16_t>(*digit));
  }
  return *this;
}

TextBuilder& TextBuilder::twoDigits(qint64 value) {
  return value < 0 ? append(text::padded(value, 2)) : number(static_cast<quint64>(value), 2);
}

TextBuilder& TextBuilder::millionths(quint64 value) {
  return number(value / 1'000'000).append(u'.').number(value % 1'000'000, 6);
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
