// The questions that the store answers.

#include "base/text.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "data/fileState.h"
#include "data/pointLocator.h"
#include "data/rows.h"

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

/// The condition for the rows of a run, with where they lie as far as that is known.
QByteArray ofRun(const Reading& reading, sqlite3* connection, pointLocator::Table table,
                 qint32 number) {
  QByteArray condition = withNumber("T_Cnumber=", number);
  const auto range = reading ? pointLocator::rangeOf(connection, table, number) : std::nullopt;
  if (range) {
    condition += withNumber(" And ID Between ", range->first) + withNumber(" And ", range->last);
  }
  return condition;
}

runData runOf(Rows& row) {
  const QString distance = text::fixed(text::toDouble(row.text(4)) / centimetresPerKilometre, 3);
  return {row.text(1),     row.text(2),     row.text(3),
          distance,        row.text(5),     text::limited(row.integer(6)),
          row.text(7),     row.text(8),     row.text(9),
          row.text(10),    row.text(11),    row.text(12),
          row.integer(13), row.text(14),    row.text(15),
          row.text(16),    row.text(17),    row.text(18),
          row.text(19),    row.integer(20), row.text(21),
          row.text(22)};
}

lapData lapOf(Rows& row) {
  return {row.text(1),  row.text(2),  row.text(3),  row.text(4),  text::limited(row.integer(5)),
          row.text(6),  row.text(7),  row.text(8),  row.text(9),  row.text(10),
          row.text(11), row.text(12), row.text(13), row.text(14), row.integer(15)};
}

// Fills the point where it stands in its dictionary; a run has thousands of them.
void readPoint(Rows& row, trackPointData& point) {
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

/// How many points the run says it has, so that they need not move while they are read; a
/// stranger's file may say anything.
qsizetype pointsExpected(sqlite3* connection, qint32 number) {
  constexpr qint64 most = 200'000;
  Rows rows(connection, "Select T_RunTrackPoint From T_RunData Where T_Cnumber=" +
                            QByteArray::number(number) + " Limit 1");
  return rows.next() ? qBound<qint64>(0, rows.integer(0), most) : 0;
}

}  // namespace

bool dataControl::answered(const Rows& rows) {
  // An object that had to make the tables is dead, but what it answers is true: they are empty.
  const bool read = !rows.failed() || madeTables_;
  queryFailed = queryFailed || !read;
  return read;
}

RunDictionary dataControl::getRunData(const QString& start, const QString& endDateStr) {
  const bool all = start.toUpper() == u"ALL";
  Rows rows(usable(),
            "Select * From T_RunData " +
                (all ? QByteArrayLiteral(" Where 1=1 ") : startedBetween(start, endDateStr)) +
                " Order by datetime(T_RunStartTime) desc;");
  RunDictionary runs;
  QStringList keys;
  while (rows.next()) {
    const runData run = runOf(rows);
    keys.append(text::padded(run.T_Cnumber, 2));
    runs.insert(keys.last(), run);
  }
  if (!answered(rows)) {
    return {};
  }
  if (!keys.isEmpty()) {
    runKeyArray = keys;
  }
  return runs;
}

RunDictionary dataControl::allRuns(KnownRuns& known) {
  const Reading reading(usable());
  const auto state = reading ? fileState(usable()) : std::nullopt;
  if (!state || state != known.state) {
    known.runs = getRunData(u"All"_s, u""_s);
    known.state = queryFailed ? std::nullopt : state;
  }
  return known.runs;
}

LapDictionary dataControl::getLapData(qint32 number) {
  const Reading reading(usable());
  Rows rows(usable(), "Select * From T_LapData Where " +
                          ofRun(reading, usable(), pointLocator::Table::laps, number) +
                          " order by T_LapNo Asc");
  LapDictionary laps;
  while (rows.next()) {
    laps.insert(rows.joined(15, 5), lapOf(rows));
  }
  return answered(rows) ? laps : LapDictionary();
}

PointDictionary dataControl::getTrackData(qint32 number) {
  const Reading reading(usable());
  Rows rows(usable(), "Select * From T_TrackPointData Where " +
                          ofRun(reading, usable(), pointLocator::Table::points, number) +
                          " order by T_SetId Asc");
  PointDictionary points;
  points.reserve(pointsExpected(usable(), number));
  qint64 found = 0;
  qint64 withFix = 0;
  for (; rows.next(); ++found) {
    trackPointData& point = points[rows.joined(15, 14)];
    readPoint(rows, point);
    withFix += isWithoutFix(point) ? 0 : 1;
  }
  if (!answered(rows)) {
    return {};
  }
  if (found > 0) {
    trackCount = withFix;
  }
  return points;
}

QString dataControl::GetTrackName(qint64 number) {
  Rows rows(usable(), withNumber("Select * From T_RunData Where T_Cnumber=", number));
  const QString start = rows.next() ? rows.text(1) : u""_s;
  return answered(rows) ? start : u""_s;
}

qint32 dataControl::getRunDataTF(const QString& day) {
  // The calendar asks this for each day that it draws; the first row tells enough.
  Rows rows(usable(), "Select * From T_RunData " +
                          startedBetween(day + u" 00:00:00"_s, day + u" 23:59:59"_s));
  const bool found = rows.next();
  return answered(rows) && found ? 1 : 0;
}

qint32 dataControl::checkRecord(const QString& startTime) {
  Rows rows(usable(),
            withText("Select Count(ID) From T_RunData Where T_RunStartTime ='", startTime, "';"));
  const bool counted = rows.next();
  answered(rows);
  if (!counted) {
    return -1;
  }
  return rows.integer(0) > 0 ? 1 : 0;
}

qint64 dataControl::countRuns(const QString& startTime) {
  Rows rows(usable(), withText("Select Count(Distinct T_Cnumber) From T_RunData Where "
                               "T_RunStartTime ='",
                               startTime, "';"));
  const bool counted = rows.next();
  return answered(rows) && counted ? rows.integer(0) : -1;
}

qint64 dataControl::getMaxCnumber(const QString& table) {
  db = open_db();
  limits_.waitForBackups();  // asked by a download, which ends here without the answer
  // A stranger's file may hold any value. Counted as they are, a text would hide all numbers, and
  // behind the largest one the next would be taken already.
  Rows rows(usable(), withText("Select Max(number) From (Select Cast(T_Cnumber As Integer) number "
                               "From ",
                               table, ") Where number Between 1 And 2147483647"));
  const qint64 largest = rows.next() ? rows.integer(0) : 0;
  unsure_ = !answered(rows);
  return largest;
}
