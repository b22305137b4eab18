// The INSERT statements of the four kinds of record.

#include "base/text.h"
#include "data/connection.h"
#include "data/dataControl.h"

namespace {

/// The number as a 32-bit conversion prints it: its lower 32 bits.
qint64 lowerHalf(qint64 value) {
  return static_cast<qint32>(value);
}

void appendValue(QByteArray& out, const QString& value) {
  out.append('\'');
  text::appendShown(out, value);
  out.append('\'');
}

void appendValue(QByteArray& out, qint64 value) {
  text::appendNumber(out, value);
}

/// `head` followed by the values, separated by commas, and ");".
template <typename First, typename... Others>
QByteArray insertion(QByteArrayView head, const First& first, const Others&... others) {
  constexpr qsizetype usualValue = 16;
  QByteArray out;
  out.reserve(head.size() + static_cast<qsizetype>(sizeof...(others) + 1) * usualValue);
  out.append(head);
  appendValue(out, first);
  ((out.append(','), appendValue(out, others)), ...);
  out.append(");");
  return out;
}

}  // namespace

QByteArray dataControl::runSqlStr(const runData& run) {
  qCInfo(dataLog).noquote() << text::shown(run.T_RunStartTime);
  return insertion(
      "Insert Into T_RunData ("
      "T_RunStartTime,T_RunEndTime ,T_RunExTime ,T_RunDistance ,T_RunCal,T_RunLap ,"
      "T_RunMaxSpeed,T_RunAvgSpeed,T_RunMaxHR ,T_RunAvgHR,T_RunMinHR,T_RunTimeZone,"
      "T_RunTrackPoint ,T_RunTrackMaxSpeed ,T_RunName,T_RunType,T_RunAlti,T_RunAsc ,T_RunDsc,"
      "T_Cnumber,T_UserName ,T_IdNumber ) Values (",
      run.T_RunStartTime, run.T_RunEndTime, run.T_RunExTime, run.T_RunDistance, run.T_RunCal,
      qint64{run.T_RunLap}, run.T_RunMaxSpeed, run.T_RunAvgSpeed, run.T_RunMaxHR, run.T_RunAvgHR,
      run.T_RunMinHR, run.T_RunTimeZone, run.T_RunTrackPoint, run.T_RunTrackMaxSpeed, run.T_RunName,
      run.T_RunType, run.T_RunAlti, run.T_RunAsc, run.T_RunDsc, run.T_Cnumber, run.T_UserName,
      run.T_IdNumber);
}

// The columns name descent before ascent, the values give ascent before descent: the two are
// crossed in the table, and so in a lap that is read back. Existing databases rely on it.
QByteArray dataControl::lapSqlStr(const lapData& lap) {
  return insertion(
      "Insert Into T_LapData ("
      "T_LapTime,T_LapDistance,T_LapCal,T_LapType,T_LapNo,T_LapMaxSpeed,T_LapAvgSpeed,"
      "T_LapMaxHR,T_LapAvgHR,T_LapMinHR,T_LapTimeZone,T_LapAlti,T_LapDsc,T_LapAsc,"
      "T_Cnumber )Values (",
      lap.T_LapTime, lap.T_LapDistance, lap.T_LapCal, lap.T_LapType, qint64{lap.T_LapNo},
      lap.T_LapMaxSpeed, lap.T_LapAvgSpeed, lap.T_LapMaxHR, lap.T_LapAvgHR, lap.T_LapMinHR,
      lap.T_LapTimeZone, lap.T_LapAlti, lap.T_LapAsc, lap.T_LapDsc, lap.T_Cnumber);
}

// The track's name fills the user's column too, which moves the values behind it on by one: the ID
// number's column gets the user, and the activity number's column the ID number. The activity
// number itself is not stored.
QByteArray dataControl::trackSqlStr(const trackData& track) {
  return insertion(
      "Insert Into T_TrackData("
      "T_TrackStartTime ,T_TrackEndTime ,T_TrackName ,T_TrackDistance ,T_TrackNumber ,"
      "T_TrackMaxSpeed ,T_TrackAvgSpeed ,T_TrackMaxHR ,T_TrackAvgHR ,T_TrackMinHR ,"
      "T_TrackTimeZone ,T_TrackCal ,T_UserName ,T_IDNumber ,T_Cnumber )Values(",
      track.T_TrackStartTime, track.T_TrackEndTime, track.T_TrackName, track.T_TrackDistance,
      lowerHalf(track.T_TrackNumber), track.T_TrackMaxSpeed, track.T_TrackAvgSpeed,
      track.T_TrackMaxHR, track.T_TrackAvgHR, track.T_TrackMinHR, track.T_TrackTimeZone,
      track.T_TrackCal, track.T_TrackName, track.T_UserName,
      lowerHalf(text::toInteger(track.T_IDNumber)));
}

QByteArray dataControl::trackPointSqlStr(const trackPointData& point) {
  return insertion(
      "Insert Into T_TrackPointData ("
      "T_PointTime ,T_PointLongitude ,T_PointLogSign ,T_PointLatitude ,T_PointLatSign ,"
      "T_PointLongitudeN ,T_PointLatitudeN ,T_PointSpeed ,T_PointHR ,T_PointAlti ,"
      "T_PointTimeZone,T_PointDistance,T_PointCal ,T_Setid ,T_Cnumber)Values(",
      point.T_PointTime, point.T_PointLongitude, point.T_PointLogSign, point.T_PointLatitude,
      point.T_PointLatSign, point.T_PointLongitudeN, point.T_PointLatitudeN, point.T_PointSpeed,
      point.T_PointHR, point.T_PointAlti, point.T_PointTimeZone, point.T_PointDistance,
      point.T_PointCal, lowerHalf(point.T_Setid), lowerHalf(point.T_Cnumber));
}
