#include "web/profileDrawing.h"

#include "base/text.h"
#include "stats/units.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>

namespace {

using namespace Qt::StringLiterals;

QJsonValue jsonOf(std::optional<double> value) {
  return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QJsonValue jsonOf(const std::optional<ProfileRange>& range) {
  return range ? QJsonValue(QJsonArray{range->low, range->high}) : QJsonValue(QJsonValue::Null);
}

/// The four lists from which the page draws.
class Lists {
 public:
  void add(const DrawnPoint& point) {
    x_.append(point.place);
    speed_.append(jsonOf(point.speed));
    heart_.append(jsonOf(point.heartRate));
    altitude_.append(jsonOf(point.altitude));
  }

  void putInto(QJsonObject& drawing) const {
    drawing[u"x"] = x_;
    drawing[u"speed"] = speed_;
    drawing[u"heart"] = heart_;
    drawing[u"altitude"] = altitude_;
  }

 private:
  QJsonArray x_, speed_, heart_, altitude_;
};

const ProfilePoint& pointAt(const RunProfile& run, int row) {
  return run.points[static_cast<std::size_t>(row)];
}

/// Number, start, end, and whether the run ends there, too.
QJsonArray lapsOf(const RunProfile& run, ProfileAxis axis) {
  QJsonArray laps;
  const int count = static_cast<int>(run.points.size());
  for (const ProfileLap& lap : run.laps) {
    if (lap.end > lap.first) {
      const int last = std::min(lap.end, count - 1);
      laps.append(QJsonArray{lap.number, placeOf(pointAt(run, lap.first), axis),
                             placeOf(pointAt(run, last), axis), lap.end == count});
    }
  }
  return laps;
}

QJsonArray pausesOf(const RunProfile& run, ProfileAxis axis) {
  QJsonArray pauses;
  for (std::size_t i = 1; i < run.points.size(); ++i) {
    if (run.points[i].isAfterPause) {
      pauses.append(QJsonArray{placeOf(run.points[i - 1], axis), placeOf(run.points[i], axis)});
    }
  }
  return pauses;
}

QString clockText(double seconds) {
  constexpr double longest = 1e9;  // a stranger's file may hold any
  const auto whole = static_cast<qint64>(std::clamp(seconds, 0.0, longest));
  return text::padded(whole / 3600, 2) + u':' + text::padded(whole / 60 % 60, 2) + u':' +
         text::padded(whole % 60, 2);
}

}  // namespace

QJsonObject profileDrawing(const RunProfile& run, ProfileAxis axis, double from, double to,
                           int columns) {
  Lists lists;
  std::optional<double> before;
  for (const DrawnPoint& point : drawnPoints(run, axis, from, to, columns)) {
    if (before && point.isAfterPause) {
      lists.add({(*before + point.place) / 2, {}, {}, {}, true});
    }
    lists.add(point);
    before = point.place;
  }
  QJsonObject drawing{{u"axis"_s, axis == ProfileAxis::Distance ? u"distance"_s : u"time"_s},
                      {u"window"_s, QJsonArray{from, to}},
                      {u"laps"_s, lapsOf(run, axis)},
                      {u"pauses"_s, pausesOf(run, axis)},
                      {u"ranges"_s, QJsonObject{{u"speed"_s, jsonOf(run.speed)},
                                                {u"heart"_s, jsonOf(run.heartRate)},
                                                {u"altitude"_s, jsonOf(run.altitude)}}}};
  lists.putInto(drawing);
  return drawing;
}

QJsonObject profileCursor(const ProfilePoint& point, ProfileAxis axis) {
  QStringList texts{text::fixed(point.kilometres, 3) + u" km"_s, clockText(point.clock)};
  if (point.speed) {
    texts << units::paceText(*point.speed) + u" /km"_s;
  }
  if (point.heartRate) {
    texts << QString::number(static_cast<int>(*point.heartRate)) + u" bpm"_s;
  }
  if (point.altitude) {
    texts << QString::number(*point.altitude) + u" m"_s;
  }
  return {{u"x"_s, placeOf(point, axis)},
          {u"speed"_s, jsonOf(point.speed)},
          {u"heart"_s, jsonOf(point.heartRate)},
          {u"text"_s, texts.join(u"   "_s)}};
}
