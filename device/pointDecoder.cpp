#include "device/pointDecoder.h"

#include "base/text.h"
#include "device/textBuilder.h"

namespace {

QString clockText(quint64 hours, quint64 minutes, quint64 seconds) {
  return TextBuilder()
      .clock(static_cast<qint64>(hours), static_cast<qint64>(minutes), static_cast<qint64>(seconds))
      .text();
}

/// One coordinate of a line: binary-coded decimal degrees, whole minutes and four decimal places of
/// the minutes, one after the other from piece `first` on.
class Coordinate {
 public:
  Coordinate(const Block& line, int first, int degreePieces)
      : line_(line), degrees_(first), degreePieces_(degreePieces), minutes_(first + degreePieces) {}

  /// Degrees and minutes, such as 35°41.2345.
  QString received() const {
    TextBuilder text;
    const QStringView degrees = line_.text(degrees_, degreePieces_);
    if (line_.isDecimal(degrees_, degreePieces_)) {
      text.number(decimalValue(degrees));
    } else {
      text.append(QString::number(text::toInteger(degrees)));
    }
    text.append(u'°');
    return appendMinutes(text).text();
  }

  /// Decimal degrees with six decimal places.
  QString decimalDegrees() const {
    if (!line_.isDecimal(degrees_, degreePieces_ + 3)) {
      TextBuilder minutes;
      return text::fixed(text::toDouble(line_.text(degrees_, degreePieces_)) +
                             text::toDouble(appendMinutes(minutes).text()) / 60,
                         6);
    }
    // In whole numbers, for speed: a ten thousandth of a minute is five thirds of a millionth of a
    // degree, so a value never lies half way between two and the rounding is that of printf.
    const quint64 degrees = decimalValue(line_.text(degrees_, degreePieces_));
    const quint64 minutes = decimalValue(line_.text(minutes_, 3));
    return TextBuilder().millionths((5 * (degrees * 600'000 + minutes) + 1) / 3).text();
  }

 private:
  TextBuilder& appendMinutes(TextBuilder& text) const {
    return text.append(line_.text(minutes_)).append(u'.').append(line_.text(minutes_ + 1, 2));
  }

  static quint64 decimalValue(QStringView digits) {
    quint64 result = 0;
    for (const QChar digit : digits) {
      result = result * 10 + (digit.unicode() - u'0');
    }
    return result;
  }

  const Block& line_;
  int degrees_;
  int degreePieces_;
  int minutes_;
};

QString characterText(quint64 byte) {
  return TextBuilder().character(byte).text();
}

}  // namespace

PointDecoder::PointDecoder(DecodedDownload& result, const QString& runKey,
                           const QString& currentRun)
    : result_(result), runKey_(runKey) {
  setCurrentRun(currentRun);
}

void PointDecoder::take(const Block& line) {
  if (line.isHeader()) {
    takeHeader(line);
  } else if (hasRun_) {
    takePoint(line);
  }
}

void PointDecoder::takeHeader(const Block& line) {
  const auto index = static_cast<qsizetype>(line.value({34}));
  if (index < result_.batch.runArr.size()) {
    runKey_ = result_.batch.runArr.at(index);
  }
  setCurrentRun(runKey_);
}

void PointDecoder::setCurrentRun(const QString& key) {
  const auto run = result_.batch.runMD.constFind(key);
  hasRun_ = run != result_.batch.runMD.constEnd();
  if (hasRun_) {
    number_ = run->T_Cnumber;
  }
}

void PointDecoder::takePoint(const Block& line) {
  const qint32 number = line.sequence();
  const Coordinate latitude(line, 15, 1);
  const Coordinate longitude(line, 20, 2);
  trackPointData& point =
      result_.batch.pointMD
          [TextBuilder().append(line.runKey()).append(u'-').number(line.value({32, 33}), 5).text()];
  point.T_PointTime = clockText(line.value({8}), line.value({7}), line.value({6}));
  point.T_PointLongitude = longitude.received();
  point.T_PointLogSign = longitudeSign_.text(line.value({25}), characterText);
  point.T_PointLatitude = latitude.received();
  point.T_PointLatSign = latitudeSign_.text(line.value({19}), characterText);
  point.T_PointLongitudeN = longitude.decimalDegrees();
  point.T_PointLatitudeN = latitude.decimalDegrees();
  point.T_PointSpeed = decimalText(line.value({4, 5}));
  point.T_PointHR = heartRate_.text(line.value({10, 11}), decimalText);
  point.T_PointAlti = altitude_.text(line.value({31, 30, 29, 28}), decimalText);
  const std::array<quint64, 3> timeZone{line.value({12}), line.value({13}), line.value({14})};
  point.T_PointTimeZone = timeZone_.text(
      timeZone, [](const auto& parts) { return clockText(parts[0], parts[1], parts[2]); });
  point.T_PointDistance = decimalText(line.value({3, 2, 1, 0}));
  point.T_PointCal = decimalText(line.value({27, 26}));
  point.T_Setid = number;
  point.T_Cnumber = number_;
  result_.cnumber = number_;
}
