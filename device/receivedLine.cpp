#include "device/receivedLine.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

struct HexPair {
  char16_t high;
  char16_t low;
};

/// The watch must never wait for its blocks to be turned into text, so the digits come from a
/// table: formatted printing is five times slower than the whole receive loop.
constexpr std::array<HexPair, 256> hexPairs = [] {
  constexpr std::array<char16_t, 16> digits{u'0', u'1', u'2', u'3', u'4', u'5', u'6', u'7',
                                            u'8', u'9', u'A', u'B', u'C', u'D', u'E', u'F'};
  std::array<HexPair, 256> pairs{};
  for (std::size_t value = 0; value < pairs.size(); ++value) {
    pairs[value] = {digits[value / 16], digits[value % 16]};
  }
  return pairs;
}();

}  // namespace

QString hexLine(std::span<const std::byte> buffer, qsizetype count) {
  if (count <= 0) {
    return QStringLiteral("");
  }
  QString line(3 * count - 1, u' ');
  auto* out = reinterpret_cast<char16_t*>(line.data());
  for (qsizetype index = 0; index < count; ++index) {
    const auto at = static_cast<std::size_t>(index);
    const HexPair pair =
        hexPairs[at < buffer.size() ? std::to_integer<std::uint8_t>(buffer[at]) : 0];
    out[3 * index] = pair.high;
    out[3 * index + 1] = pair.low;
  }
  return line;
}

bool isEndMarker(QStringView line) {
  return line.startsWith(u"EE EE EE EE");
}
