#include "app/tableRows.h"

#include "base/text.h"
#include "data/recordOrder.h"
#include "stats/units.h"

namespace {

QString kilometres(const QString& centimetres) {
  return text::fixed(units::kilometres(centimetres), 3);
}

lViewData summaryRow(const runData& run, const QString& calories) {
  const double average = units::kmh(run.T_RunAvgSpeed);
  return {run.T_RunStartTime,       run.T_RunExTime,
          run.T_RunDistance,        text::fixed(average, 1),
          units::paceText(average), text::fixed(units::kmh(run.T_RunMaxSpeed), 1),
          run.T_RunAvgHR,           run.T_RunMaxHR,
          run.T_RunTimeZone,        calories};
}

lViewData lapRow(const lapData& lap, const QString& calories) {
  const double average = units::kmh(lap.T_LapAvgSpeed);
  return {lap.T_LapType,
          lap.T_LapTime,
          kilometres(lap.T_LapDistance),
          text::fixed(average, 1),
          units::paceText(average),
          text::fixed(units::kmh(lap.T_LapMaxSpeed), 1),
          lap.T_LapAvgHR,
          lap.T_LapMaxHR,
          lap.T_LapTimeZone,
          calories};
}

}  // namespace

tViewData runRow(const runData& run) {
  return {run.T_RunStartTime, run.T_RunEndTime, run.T_RunDistance};
}

std::vector<lViewData> lapRows(const runData& run, const LapDictionary& laps, qint64 number) {
  const QString calories = text::fixed(units::kilocalories(run.T_RunCal), 0);
  std::vector<lViewData> rows;
  rows.reserve(static_cast<std::size_t>(laps.size()) + 1);
  rows.push_back(summaryRow(run, calories));
  for (const lapData* lap : inOrder(laps, number)) {
    if (lap != nullptr) {
      rows.push_back(lapRow(*lap, calories));
    }
  }
  return rows;
}

pViewData pointRow(const trackPointData& point) {
  const double speed = units::pointKmh(point.T_PointSpeed);
  return {QString::number(point.T_Setid),
          point.T_PointTime,
          kilometres(point.T_PointDistance),
          text::fixed(speed, 1),
          units::paceText(speed),
          QString::number(units::pointHeartRate(point.T_PointHR)),
          point.T_PointCal,
          point.T_PointAlti};
}
