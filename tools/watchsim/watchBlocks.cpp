#include "tools/watchsim/watchBlocks.h"

#include <initializer_list>

namespace {

constexpr char runType = '\xFD';
constexpr char pointType = '\xFA';

/// Fills a block from left to right or at given places.
class BlockWriter {
 public:
  BlockWriter(char type, qint32 sequence, qint32 key) {
    bigEndian({32, 33}, sequence);
    set(34, key);
    block_[35] = type;
  }

  void set(int place, qint64 value) { block_[place] = static_cast<char>(value & 0xFF); }
  /// The most significant byte goes to the first place.
  void bigEndian(std::initializer_list<int> places, qint64 value) {
    auto shift = 8 * static_cast<int>(places.size());
    for (const int place : places) {
      shift -= 8;
      set(place, value >> shift);
    }
  }
  /// Two decimal digits.
  void decimal(int place, qint32 value) { set(place, value / 10 % 10 * 16 + value % 10); }
  void clock(std::initializer_list<int> hoursMinutesSeconds, qint32 seconds) {
    const int* place = hoursMinutesSeconds.begin();
    set(place[0], seconds / 3600);
    set(place[1], seconds / 60 % 60);
    set(place[2], seconds % 60);
  }
  /// Minutes with four decimal places, from ten thousandths of a minute.
  void minutes(int place, qint32 value) {
    decimal(place, value / 10'000);
    decimal(place + 1, value / 100);
    decimal(place + 2, value);
  }
  QByteArray block() const { return block_; }

 private:
  QByteArray block_ = QByteArray(36, '\0');
};

constexpr qint32 perDegree = 600'000;  // ten thousandths of a minute

}  // namespace

QByteArray runHeaderBlock(const RunHeader& header, qint32 key) {
  BlockWriter block(runType, 0, key);
  const QTime time = header.start.time();
  const QDate date = header.start.date();
  block.set(0, time.second());
  block.set(1, time.minute());
  block.set(2, time.hour());
  block.set(3, date.day());
  block.set(4, date.month());
  block.set(5, date.year() % 100);
  block.bigEndian({6, 7}, header.lapCount + 1);
  block.bigEndian({8, 9}, header.maxSpeed);
  block.bigEndian({10, 11}, header.avgSpeed);
  block.set(12, header.maxHR);
  block.set(13, header.minHR);
  block.bigEndian({14, 15}, header.pointCount);
  block.bigEndian({28, 17, 16}, header.descent);
  for (int i = 0; i < 7 && i < header.name.size(); ++i) {
    block.set(18 + i, header.name[i]);
  }
  block.set(25, header.avgHR);
  block.set(26, header.pace % 60);
  block.set(27, header.pace / 60);
  block.bigEndian({31, 30, 29}, header.ascent);
  return block.block();
}

QByteArray lapBlock(const LapCounters& lap, qint32 number, qint32 key) {
  BlockWriter block(runType, number, key);
  block.clock({0, 1, 2}, lap.seconds);
  block.set(3, lap.hundredths);
  block.bigEndian({4, 5, 6, 7}, lap.distance);
  block.bigEndian({8, 9, 10, 11}, lap.calories);
  block.bigEndian({12, 13}, lap.maxSpeed);
  block.bigEndian({14, 15}, lap.avgSpeed);
  block.bigEndian({16, 17, 18, 19}, lap.hrSum | (lap.isAutomatic ? 0x1000'0000 : 0));
  block.bigEndian({20, 21}, lap.hrSamples);
  block.set(22, lap.maxHR);
  block.set(23, lap.minHR);
  block.clock({24, 25, 26}, lap.seconds);
  block.bigEndian({31, 30, 29, 28}, lap.altitude);
  return block.block();
}

QByteArray pointHeaderBlock(qint32 index) {
  return BlockWriter(pointType, 0, index).block();
}

QByteArray pointBlock(const TrackPoint& point, qint32 number, qint32 key) {
  BlockWriter block(pointType, number, key);
  block.bigEndian({3, 2, 1, 0}, point.distance);
  block.bigEndian({4, 5}, point.speed);
  block.clock({8, 7, 6}, point.timeOfDay);
  block.bigEndian({10, 11}, point.hr);
  block.clock({12, 13, 14}, point.elapsed);
  block.decimal(15, point.latitude / perDegree);
  block.minutes(16, point.latitude % perDegree);
  block.set(19, point.hasFix ? 'N' : '0');
  block.decimal(20, point.longitude / perDegree / 100);
  block.decimal(21, point.longitude / perDegree);
  block.minutes(22, point.longitude % perDegree);
  block.set(25, point.hasFix ? 'E' : '0');
  block.bigEndian({27, 26}, point.calories);
  block.bigEndian({31, 30, 29, 28}, point.altitude);
  return block.block();
}

QByteArray endMarkerBlock() {
  return QByteArray(4, '\xEE') + QByteArray(32, '\0');
}

QByteArray identityBlock() {
  // One letter, the serial number, the model's characters, the version, and from 26 on the size of
  // a block, an unused byte, the flags (altitude recorded) and the model's suffix.
  QByteArray block(
      "M\x0E\x05\x11\xA1\xB2\xC3"
      "RUNNERV01.20");
  block.resize(36);
  std::fill(block.begin() + 19, block.end(), '\0');
  block[26] = 36;
  block[28] = '\x80';
  block[29] = '1';
  return block;
}
