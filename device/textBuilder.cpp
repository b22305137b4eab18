#include "device/textBuilder.h"

#include "data/text.h"

#include <array>
#include <charconv>

TextBuilder& TextBuilder::append(QStringView part) {
  text_.append(part.utf16(), part.size());
  return *this;
}

TextBuilder& TextBuilder::number(quint64 value) {
  std::array<char, 20> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  for (const char* digit = digits.data(); digit != end; ++digit) {
    text_.append(static_cast<char16_t>(*digit));
  }
  return *this;
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
  number(value / 1'000'000).append(u".").digits(value % 1'000'000, 100'000);
  return *this;
}

TextBuilder& TextBuilder::character(quint64 byte) {
  if (byte != 0) {
    text_.append(static_cast<char16_t>(byte));
  }
  return *this;
}

TextBuilder& TextBuilder::clock(qint64 hours, qint64 minutes, qint64 seconds) {
  return twoDigits(hours).append(u":").twoDigits(minutes).append(u":").twoDigits(seconds);
}

void TextBuilder::digits(quint64 value, quint64 highestUnit) {
  for (quint64 unit = highestUnit; unit > 0; unit /= 10) {
    text_.append(static_cast<char16_t>(u'0' + value / unit % 10));
  }
}
