#include "cli/runFields.h"

#include "base/text.h"
#include "stats/units.h"

using namespace Qt::StringLiterals;

namespace {

QString kilometresText(const QString& centimetres) {
  return text::fixed(units::kilometres(centimetres), 3);
}

/// Decimal degrees with the sign that the letter gives; empty without a fix.
QString signedDegrees(const QString& degrees, const QString& sign, QStringView positive,
                      QStringView negative) {
  if (sign != positive && sign != negative) {
    return u""_s;
  }
  return text::fixed(text::toDouble(degrees) * (sign == negative ? -1 : 1), 6);
}

QString latitude(const trackPointData& point) {
  return signedDegrees(point.T_PointLatitudeN, point.T_PointLatSign, u"N", u"S");
}

QString longitude(const trackPointData& point) {
  return signedDegrees(point.T_PointLongitudeN, point.T_PointLogSign, u"E", u"W");
}

QJsonValue degreesOrNull(const QString& degrees) {
  return degrees.isEmpty() ? QJsonValue() : QJsonValue(text::toDouble(degrees));
}

}  // namespace

QStringList runTitles() {
  return {u"番号"_s, u"開始"_s, u"終了"_s, u"距離 (km)"_s, u"時間"_s, u"平均ペース (/km)"_s};
}

QStringList runRow(const runData& run) {
  return {QString::number(run.T_Cnumber),
          run.T_RunStartTime,
          run.T_RunEndTime,
          run.T_RunDistance,
          run.T_RunExTime,
          units::paceText(units::kmh(run.T_RunAvgSpeed))};
}

QJsonObject runObject(const runData& run) {
  return {{u"number"_s, run.T_Cnumber},
          {u"start"_s, run.T_RunStartTime},
          {u"end"_s, run.T_RunEndTime},
          {u"distanceKm"_s, text::toDouble(run.T_RunDistance)},
          {u"time"_s, run.T_RunExTime},
          {u"averagePace"_s, units::paceText(units::kmh(run.T_RunAvgSpeed))},
          {u"averageSpeedKmh"_s, units::kmh(run.T_RunAvgSpeed)},
          {u"maximumSpeedKmh"_s, units::kmh(run.T_RunMaxSpeed)},
          {u"averageHeartRate"_s, text::toInt32(run.T_RunAvgHR)},
          {u"maximumHeartRate"_s, text::toInt32(run.T_RunMaxHR)},
          {u"kilocalories"_s, units::kilocalories(run.T_RunCal)},
          {u"laps"_s, run.T_RunLap},
          {u"points"_s, run.T_RunTrackPoint},
          {u"name"_s, run.T_RunName}};
}

QStringList lapTitles() {
  return {u"ラップ"_s,           u"時間"_s,     u"距離 (km)"_s, u"平均速度 (km/h)"_s,
          u"平均ペース (/km)"_s, u"平均心拍"_s, u"最大心拍"_s};
}

QStringList lapRow(const lapData& lap) {
  const double speed = units::kmh(lap.T_LapAvgSpeed);
  return {lap.T_LapType,         lap.T_LapTime,          kilometresText(lap.T_LapDistance),
          text::fixed(speed, 1), units::paceText(speed), lap.T_LapAvgHR,
          lap.T_LapMaxHR};
}

QJsonObject lapObject(const lapData& lap) {
  const double speed = units::kmh(lap.T_LapAvgSpeed);
  return {{u"number"_s, lap.T_LapNo},
          {u"label"_s, lap.T_LapType},
          {u"time"_s, lap.T_LapTime},
          {u"distanceKm"_s, units::kilometres(lap.T_LapDistance)},
          {u"averageSpeedKmh"_s, speed},
          {u"averagePace"_s, units::paceText(speed)},
          {u"averageHeartRate"_s, text::toInt32(lap.T_LapAvgHR)},
          {u"maximumHeartRate"_s, text::toInt32(lap.T_LapMaxHR)},
          {u"kilocalories"_s, units::kilocalories(lap.T_LapCal)}};
}

QStringList pointTitles() {
  return {u"number"_s,    u"time"_s,        u"latitude"_s,   u"longitude"_s, u"distance_km"_s,
          u"speed_kmh"_s, u"pace_per_km"_s, u"heart_rate"_s, u"altitude"_s};
}

QStringList pointRow(const trackPointData& point) {
  const double speed = units::pointKmh(point.T_PointSpeed);
  return {QString::number(point.T_Setid),
          point.T_PointTime,
          latitude(point),
          longitude(point),
          kilometresText(point.T_PointDistance),
          text::fixed(speed, 1),
          units::paceText(speed),
          QString::number(units::pointHeartRate(point.T_PointHR)),
          point.T_PointAlti};
}

QJsonObject pointObject(const trackPointData& point) {
  const double speed = units::pointKmh(point.T_PointSpeed);
  return {{u"number"_s, point.T_Setid},
          {u"time"_s, point.T_PointTime},
          {u"latitude"_s, degreesOrNull(latitude(point))},
          {u"longitude"_s, degreesOrNull(longitude(point))},
          {u"distanceKm"_s, units::kilometres(point.T_PointDistance)},
          {u"speedKmh"_s, speed},
          {u"pace"_s, units::paceText(speed)},
          {u"heartRate"_s, units::pointHeartRate(point.T_PointHR)},
          {u"altitude"_s, text::toDouble(point.T_PointAlti)}};
}
