// The questions that the store answers.

#include "base/text.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "data/table.h"

#include <algorithm>
#include <limits>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double centimetresPerKilometre = 100000.0;

QByteArray withText(QByteArrayView before, const QString& value, QByteArrayView after) {
  QByteArray sql = before.toByteArray();
  text::appendShown(sql, value);
  return sql.append(after);
}

QByteArray withNumber(QByteArrayView before, qint64 number, QByteArrayView after = {}) {
  QByteArray sql = before.toByteArray();
  text::appendNumber(sql, number);
  return sql.append(after);
}

QByteArray startedBetween(const QString& first, const QString& last) {
  return withText(" Where T_RunStartTime Between '", first, "' and '") + withText("", last, "' ");
}

/// The nearest 32-bit number, as text::toInt32() gives it; a restored file may hold any.
qint32 limited(qint64 value) {
  using Limits = std::numeric_limits<qint32>;
  return static_cast<qint32>(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}

runData runOf(const Table::Row& row) {
  const QString distance = text::fixed(text::toDouble(row.text(4)) / centimetresPerKilometre, 3);
  return {row.text(1),     row.text(2),     row.text(3),
          distance,        row.text(5),     limited(row.integer(6)),
          row.text(7),     row.text(8),     row.text(9),
          row.text(10),    row.text(11),    row.text(12),
          row.integer(13), row.text(14),    row.text(15),
          row.text(16),    row.text(17),    row.text(18),
          row.text(19),    row.integer(20), row.text(21),
          row.text(22)};
}

lapData lapOf(const Table::Row& row) {
  return {row.text(1),  row.text(2),  row.text(3),  row.text(4),  limited(row.integer(5)),
          row.text(6),  row.text(7),  row.text(8),  row.text(9),  row.text(10),
          row.text(11), row.text(12), row.text(13), row.text(14), row.integer(15)};
}

// Fills the point where it stands in its dictionary; a run has thousands of them.
void readPoint(const Table::Row& row, trackPointData& point) {
  point.T_PointTime = row.text(1);
  point.T_PointLongitude = row.text(2);
  point.T_PointLogSign = row.text(3);
  point.T_PointLatitude = row.text(4);
  point.T_PointLatSign = row.text(5);
  point.T_PointLongitudeN = row.text(6);
  point.T_PointLatitudeN = row.text(7);
  point.T_PointSpeed = row.text(8);
  point.T_PointHR = row.text(9);
  point.T_PointAlti = row.text(10);
  point.T_PointTimeZone = row.text(11);
  point.T_PointDistance = row.text(12);
  point.T_PointCal = row.text(13);
  point.T_Setid = row.integer(14);
  point.T_Cnumber = row.integer(15);
}

bool isWithoutFix(const trackPointData& point) {
  return point.T_PointLogSign == u"0" && !point.T_PointLatSign.isEmpty();
}

}  // namespace

RunDictionary dataControl::getRunData(const QString& start, const QString& endDateStr) {
  const bool all = start.toUpper() == u"ALL";
  const Table table(
      usable(), "Select * From T_RunData " +
                    (all ? QByteArrayLiteral(" Where 1=1 ") : startedBetween(start, endDateStr)) +
                    " Order by datetime(T_RunStartTime) desc;");
  RunDictionary runs;
  QStringList keys;
  for (qsizetype i = 0; i < table.rows(); ++i) {
    const runData run = runOf(table.row(i));
    keys.append(text::padded(run.T_Cnumber, 2));
    runs.insert(keys.last(), run);
  }
  if (!keys.isEmpty()) {
    runKeyArray = keys;
  }
  return runs;
}

LapDictionary dataControl::getLapData(qint32 number) {
  const Table table(usable(), withNumber("Select * From T_LapData Where T_Cnumber=", number,
                                         " order by T_LapNo Asc"));
  LapDictionary laps;
  for (qsizetype i = 0; i < table.rows(); ++i) {
    const Table::Row row = table.row(i);
    laps.insert(row.joined(15, 5), lapOf(row));
  }
  return laps;
}

PointDictionary dataControl::getTrackData(qint32 number) {
  const Table table(usable(), withNumber("Select * From T_TrackPointData Where T_Cnumber=", number,
                                         " order by T_SetId Asc"));
  PointDictionary points;
  points.reserve(table.rows());
  qint64 withFix = 0;
  for (qsizetype i = 0; i < table.rows(); ++i) {
    const Table::Row row = table.row(i);
    trackPointData& point = points[row.joined(15, 14)];
    readPoint(row, point);
    withFix += isWithoutFix(point) ? 0 : 1;
  }
  if (table.rows() > 0) {
    trackCount = withFix;
  }
  return points;
}

QString dataControl::GetTrackName(qint64 number) {
  const Table table(usable(), withNumber("Select * From T_RunData Where T_Cnumber=", number));
  return table.rows() > 0 ? table.row(0).text(1) : u""_s;
}

qint32 dataControl::getRunDataTF(const QString& day) {
  const QByteArray sql =
      "Select * From T_RunData " + startedBetween(day + u" 00:00:00"_s, day + u" 23:59:59"_s);
  const PreparedStatement statement = prepare(usable(), sql.constData());
  // The calendar asks this for each day that it draws; the first row tells enough.
  return statement != nullptr && sqlite3_step(statement.get()) == SQLITE_ROW ? 1 : 0;
}

qint32 dataControl::checkRecord(const QString& startTime) {
  const Table table(usable(), withText("Select Count(ID) From T_RunData Where T_RunStartTime ='",
                                       startTime, "';"));
  if (table.rows() == 0) {
    return -1;
  }
  return table.row(0).integer(0) > 0 ? 1 : 0;
}

qint64 dataControl::getMaxCnumber(const QString& table) {
  db = open_db();
  const Table largest(usable(), withText("Select Max(T_Cnumber) From ", table, ""));
  return largest.rows() > 0 ? qMax<qint64>(largest.row(0).integer(0), 0) : 0;
}
