#include "device/blockReader.h"

#include <algorithm>

namespace {

constexpr char16_t blank = u' ';
constexpr quint8 noDigit = 0xFF;

constexpr std::array<quint8, 128> makeDigitTable() {
  std::array<quint8, 128> table{};
  table.fill(noDigit);
  for (quint8 digit = 0; digit < 16; ++digit) {
    table.at(static_cast<size_t>("0123456789ABCDEF"[digit])) = digit;
    table.at(static_cast<size_t>("0123456789abcdef"[digit])) = digit;
  }
  return table;
}

constexpr std::array<quint8, 128> digitTable = makeDigitTable();

quint8 digitValue(char16_t character) {
  return character < digitTable.size() ? digitTable[character] : noDigit;
}

}  // namespace

LineKind Block::kind(QStringView line) {
  if (line.size() - line.count(QChar(blank)) < digitCount) {
    return LineKind::tooShort;
  }
  std::array<char16_t, 2> last{};
  auto place = last.rbegin();
  for (auto it = line.utf16() + line.size(); place != last.rend();) {
    --it;
    if (*it != blank) {
      *place++ = *it;
    }
  }
  const QStringView type(last);
  if (type == u"FD") {
    return LineKind::run;
  }
  return type == u"FA" ? LineKind::point : LineKind::other;
}

Block::Block(QStringView line) {
  size_t length = 0;
  for (const QChar character : line) {
    if (character == QChar(blank)) {
      continue;
    }
    if (length == digitCount) {
      break;
    }
    characters_[length] = character.unicode();
    values_[length] = digitValue(character.unicode());
    ++length;
  }
  std::fill(values_.begin() + static_cast<std::ptrdiff_t>(length), values_.end(), noDigit);
}

QStringView Block::text(int first, int count) const {
  return QStringView(characters_).sliced(qsizetype{2} * first, qsizetype{2} * count);
}

quint64 Block::value(std::initializer_list<int> pieces) const {
  quint64 result = 0;
  for (const int piece : pieces) {
    for (const size_t digit :
         {2 * static_cast<size_t>(piece), 2 * static_cast<size_t>(piece) + 1}) {
      if (values_[digit] == noDigit) {
        return result;
      }
      result = (result << 4U) | values_[digit];
    }
  }
  return result;
}

quint64 Block::digits(int first, int count) const {
  quint64 result = 0;
  for (int digit = first; digit < first + count; ++digit) {
    const quint8 value = values_[static_cast<size_t>(digit)];
    if (value == noDigit) {
      break;
    }
    result = (result << 4U) | value;
  }
  return result;
}

bool Block::isDecimal(int first, int count) const {
  const auto begin = values_.begin() + qsizetype{2} * first;
  return std::all_of(begin, begin + qsizetype{2} * count, [](quint8 value) { return value < 10; });
}
