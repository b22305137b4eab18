#include "device/watchCommands.h"

#include "base/text.h"

namespace {

constexpr unsigned letterUpper = 'A' - 10;
constexpr unsigned letterLower = 'a' - 10;

unsigned digitValue(char16_t character, bool upperCase) {
  if (text::isDigit(character)) {
    return static_cast<unsigned>(character) - '0';
  }
  return static_cast<unsigned>(character) - (upperCase ? letterUpper : letterLower);
}

std::byte pairValue(char16_t high, char16_t low) {
  const bool upperCase = high >= u'A' && high <= u'F';
  return static_cast<std::byte>((digitValue(high, upperCase) * 16 + digitValue(low, upperCase)) &
                                0xFF);
}

}  // namespace

namespace watchCommand {
const QString link =
    QStringLiteral("EEEE000000000000000000000000000000000000000000000000000000000000");
const QString downloadAll =
    QStringLiteral("0808AAAA00000000000000000000000000000000000000000000000000000000");
const QString erase =
    QStringLiteral("000000000000000000000000000000000000000000000000000000000000FFFD");
const QString agpsStart =
    QStringLiteral("4147505353540000000000000000000000000000000000000000000000000000");
const QString disconnect =
    QStringLiteral("FFFFFFFF00000000000000000000000000000000000000000000000000000000");
}  // namespace watchCommand

std::array<std::byte, 32> commandBytes(QStringView hex) {
  std::array<std::byte, 32> bytes{};
  qsizetype at = 0;
  for (std::byte& byte : bytes) {
    if (at + 1 >= hex.size()) {
      break;
    }
    byte = pairValue(hex[at].unicode(), hex[at + 1].unicode());
    at += 2;
  }
  return bytes;
}
