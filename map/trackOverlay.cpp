#include "map/trackOverlay.h"

#include "base/text.h"
#include "data/pauseFinder.h"
#include "data/recordOrder.h"
#include "map/chinaShift.h"

#include <QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

Q_LOGGING_CATEGORY(lcTrack, "trakko.map", QtInfoMsg)

namespace {

using namespace Qt::StringLiterals;

constexpr int decimals = 6;

struct Position {
  double lat;
  double lon;
};

/// What distinguishes the expressions of the two pages.
struct Dialect {
  bool (*isUsable)(const trackPointData& point);
  bool (*mayBreak)(int index, quint64 count);
  void (*appendPoint)(QString& out, const trackPointData& point, Position position);
  QChar closing;
  QString (*arrow)(Position from, Position to);
};

/// Whether script reads the text as the decimal number that it looks like: digits, at most one
/// point with digits on both sides, no zeros in front (those would make it octal).
bool isPlainDecimal(QStringView value) {
  if (value.startsWith(u'-')) {
    value = value.sliced(1);
  }
  const auto* const end = value.end();
  const auto* const point = std::find_if_not(value.begin(), end, text::isDigit);
  const auto whole = point - value.begin();
  if (whole == 0 || (whole > 1 && value.front() == u'0')) {
    return false;
  }
  return point == end ||
         (*point == u'.' && point + 1 != end && std::all_of(point + 1, end, text::isDigit));
}

/// Databases may come from strangers: only numbers may get into the script.
void appendCoordinate(QString& out, const QString& stored, double value) {
  // Script reads some hundred digits as infinite, as this program does.
  if (isPlainDecimal(stored) && std::isfinite(text::toDouble(stored))) {
    out += stored;
  } else {
    out += text::fixed(value, decimals);
  }
}

/// A number that can be computed with and printed, whatever the text says.
double coordinate(const QString& stored) {
  const double value = text::toDouble(stored);
  return std::isfinite(value) ? value : 0.0;
}

Position positionOf(const trackPointData& point) {
  return {coordinate(point.T_PointLatitudeN), coordinate(point.T_PointLongitudeN)};
}

bool hasLetters(const trackPointData& point) {
  return point.T_PointLatSign == u"N" || point.T_PointLatSign == u"S" ||
         point.T_PointLogSign == u"E" || point.T_PointLogSign == u"W";
}

/// The codes of the letters E and N, written as decimal numbers, count as well.
bool hasLetterCodes(const trackPointData& point) {
  return point.T_PointLogSign == u"69" && point.T_PointLatSign == u"78";
}

void appendGooglePoint(QString& out, const trackPointData& point, Position position) {
  out += out.isEmpty() ? u"[{lat: " : u",{lat: ";
  appendCoordinate(out, point.T_PointLatitudeN, position.lat);
  out += u", lng: ";
  appendCoordinate(out, point.T_PointLongitudeN, position.lon);
  out += u'}';
}

QString shiftedLonLat(Position position) {
  return text::fixed(ConvertGDLon(position.lat, position.lon), decimals) + u',' +
         text::fixed(ConvertGDLat(position.lat, position.lon), decimals);
}

void appendGDPoint(QString& out, const trackPointData& /*point*/, Position position) {
  out += out.isEmpty() ? u"new Array(new AMap.LngLat(" : u",new AMap.LngLat(";
  out += shiftedLonLat(position);
  out += u')';
}

QString latLon(Position position) {
  return text::fixed(position.lat, decimals) + u',' + text::fixed(position.lon, decimals);
}

QString googleArrow(Position from, Position to) {
  return u"new Array(new google.maps.LatLng("_s + latLon(from) + u"),"_s +
         u"new google.maps.LatLng("_s + latLon(to) + u"))"_s;
}

/// The constructor's name with the longitude first and the spelling "Amap" are part of this text,
/// which nothing evaluates.
QString gdArrow(Position from, Position to) {
  return u"new Array(new AMap.LatLng("_s + shiftedLonLat(from) + u"),"_s + u"new Amap.LatLng("_s +
         shiftedLonLat(to) + u"))"_s;
}

const Dialect google{
    .isUsable = [](const trackPointData& p) { return hasLetters(p) || hasLetterCodes(p); },
    .mayBreak = [](int, quint64) { return true; },
    .appendPoint = appendGooglePoint,
    .closing = u']',
    .arrow = googleArrow};

// The unsigned subtraction wraps round for tracks of fewer than ten points: no limit for them.
constexpr quint64 tail = 10;

const Dialect gd{
    .isUsable = hasLetters,
    .mayBreak = [](int index, quint64 count) { return quint64(index) <= count - tail; },
    .appendPoint = appendGDPoint,
    .closing = u')',
    .arrow = gdArrow};

/// The points around the middle of the track, from which the direction arrow is taken.
class MiddleStretch {
 public:
  explicit MiddleStretch(qsizetype count) : half_(static_cast<qint32>(count) / 2) {}

  void take(int index, Position position) {
    if (index >= half_ - reach && index <= half_ + reach) {
      points_.push_back({rounded(position.lat), rounded(position.lon)});
    }
  }

  /// The first point that differs from the next one in latitude and in longitude, with that one.
  std::optional<std::pair<Position, Position>> pair() const {
    const auto found =
        std::adjacent_find(points_.begin(), points_.end(),
                           [](Position a, Position b) { return a.lat != b.lat && a.lon != b.lon; });
    if (found == points_.end()) {
      return std::nullopt;
    }
    return std::pair(*found, *std::next(found));
  }

 private:
  static constexpr int reach = 20;

  /// As the page will see it.
  static double rounded(double value) { return text::toDouble(text::fixed(value, decimals)); }

  qint32 half_;
  std::vector<Position> points_;
};

/// The pauses, as the page takes them.
class BreakList {
 public:
  BreakList(const Dialect& dialect, quint64 count) : dialect_(dialect), count_(count) {}

  void take(int index, const trackPointData& point) {
    if (pauses_.isAfterPause(index, point) && dialect_.mayBreak(index, count_)) {
      append(index);
    }
  }

  QString closed() const {
    if (list_.isEmpty()) {
      return QStringLiteral("1");
    }
    return list_ + u',' + QString::number(count_ - 1) + u')';
  }

 private:
  void append(int index) {
    if (list_.isEmpty()) {
      list_ = u"new Array(0,"_s + QString::number(index);
    } else if (quint64(index) < count_ - tail) {
      list_ += u',' + QString::number(index);
    }
  }

  const Dialect& dialect_;
  quint64 count_;
  PauseFinder pauses_;
  QString list_;
};

void widen(TrackBounds& bounds, Position position) {
  if (bounds.maxLat == TrackBounds::unset) {
    bounds = {position.lat, position.lat, position.lon, position.lon};
    return;
  }
  bounds.maxLat = std::max(bounds.maxLat, position.lat);
  bounds.minLat = std::min(bounds.minLat, position.lat);
  bounds.maxLon = std::max(bounds.maxLon, position.lon);
  bounds.minLon = std::min(bounds.minLon, position.lon);
}

TrackOverlay build(const Dialect& dialect, const PointDictionary& pointDic, qint64 number,
                   const QString& arrPointStr) {
  constexpr qsizetype lengthOfPoint = 40;
  const qsizetype count = pointDic.size();
  TrackOverlay overlay;
  overlay.arrPointStr = arrPointStr;
  overlay.expression.reserve(count * lengthOfPoint);
  MiddleStretch middle(count);
  BreakList breaks(dialect, static_cast<quint64>(count));

  int next = 0;
  for (const trackPointData* point : inOrder(pointDic, number)) {
    const int i = next++;
    if (point == nullptr) {
      qCInfo(lcTrack, "%d", i);
      continue;
    }
    const Position position = positionOf(*point);
    middle.take(i, position);
    if (!dialect.isUsable(*point)) {
      continue;
    }
    widen(overlay.bounds, position);
    breaks.take(i, *point);
    dialect.appendPoint(overlay.expression, *point, position);
  }
  if (overlay.expression.isEmpty()) {
    return overlay;
  }
  overlay.expression += dialect.closing;
  overlay.breakPointStr = breaks.closed();
  if (const auto pair = middle.pair()) {
    overlay.arrPointStr = dialect.arrow(pair->first, pair->second);
  }
  return overlay;
}

}  // namespace

TrackOverlay buildGoogleOverlay(const PointDictionary& pointDic, qint64 number,
                                const QString& arrPointStr) {
  return build(google, pointDic, number, arrPointStr);
}

TrackOverlay buildGDOverlay(const PointDictionary& pointDic, qint64 number,
                            const QString& arrPointStr) {
  return build(gd, pointDic, number, arrPointStr);
}

QString googlePosition(const trackPointData& point) {
  return google.isUsable(point) ? latLon(positionOf(point)) : QString();
}
