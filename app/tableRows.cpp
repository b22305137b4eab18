#include "app/tableRows.h"

#include "base/text.h"

#include <cmath>

namespace {

constexpr double centimetresPerKilometre = 100000.0;
constexpr double tenthsOfKmh = 10.0;
constexpr double fiftiethsOfKmh = 50.0;
constexpr double caloriesPerKilocalorie = 10000.0;
constexpr qint32 heartRateScale = 5;

QString kilometres(const QString& centimetres) {
  return text::fixed(text::toDouble(centimetres) / centimetresPerKilometre, 3);
}

double kmh(const QString& tenths) {
  return text::toDouble(tenths) / tenthsOfKmh;
}

lViewData summaryRow(const runData& run, const QString& calories) {
  const double average = kmh(run.T_RunAvgSpeed);
  return {run.T_RunStartTime, run.T_RunExTime,
          run.T_RunDistance,  text::fixed(average, 1),
          paceText(average),  text::fixed(kmh(run.T_RunMaxSpeed), 1),
          run.T_RunAvgHR,     run.T_RunMaxHR,
          run.T_RunTimeZone,  calories};
}

lViewData lapRow(const lapData& lap, const QString& calories) {
  const double average = kmh(lap.T_LapAvgSpeed);
  return {lap.T_LapType,
          lap.T_LapTime,
          kilometres(lap.T_LapDistance),
          text::fixed(average, 1),
          paceText(average),
          text::fixed(kmh(lap.T_LapMaxSpeed), 1),
          lap.T_LapAvgHR,
          lap.T_LapMaxHR,
          lap.T_LapTimeZone,
          calories};
}

pViewData pointRow(const trackPointData& point) {
  const double speed = text::toDouble(point.T_PointSpeed) / fiftiethsOfKmh;
  return {QString::number(point.T_Setid),
          point.T_PointTime,
          kilometres(point.T_PointDistance),
          text::fixed(speed, 1),
          paceText(speed),
          QString::number(text::toInt32(point.T_PointHR) / heartRateScale),
          point.T_PointCal,
          point.T_PointAlti};
}

QString rowKey(const QString& prefix, qsizetype number) {
  return prefix + QString::number(number);
}

}  // namespace

QString paceText(double speed) {
  constexpr double secondsPerHour = 3600.0;
  constexpr double longestPace =
      1e15;  // keeps a speed of almost nothing inside the integer's range
  if (!(speed > 0)) {
    return QStringLiteral("00'00");
  }
  const auto pace = static_cast<qint64>(std::min(secondsPerHour / speed, longestPace));
  return text::padded(pace / 60, 2) + u'\'' + text::padded(pace % 60, 2);
}

tViewData runRow(const runData& run) {
  return {run.T_RunStartTime, run.T_RunEndTime, run.T_RunDistance};
}

std::vector<lViewData> lapRows(const runData& run, const LapDictionary& laps, qint64 number) {
  const QString calories = text::fixed(text::toDouble(run.T_RunCal) / caloriesPerKilocalorie, 0);
  std::vector<lViewData> rows;
  rows.reserve(static_cast<std::size_t>(laps.size()) + 1);
  rows.push_back(summaryRow(run, calories));
  const QString prefix = QString::number(number) + u'-';
  for (qsizetype i = 0; i < laps.size(); ++i) {
    const auto lap = laps.constFind(rowKey(prefix, i + 1));
    if (lap != laps.constEnd()) {
      rows.push_back(lapRow(*lap, calories));
    }
  }
  return rows;
}

std::vector<pViewData> pointRows(const PointDictionary& points, qint64 number) {
  std::vector<pViewData> rows;
  rows.reserve(static_cast<std::size_t>(points.size()));
  // The point keys carry the number as a 32-bit one, unlike the lap keys.
  const QString prefix = QString::number(static_cast<qint32>(number)) + u'-';
  for (qsizetype i = 0; i < points.size(); ++i) {
    const auto point = points.constFind(rowKey(prefix, i + 1));
    if (point != points.constEnd()) {
      rows.push_back(pointRow(*point));
    }
  }
  return rows;
}
