#pragma once

#include <QHash>
#include <QString>

// The four kinds of record. Each member is named after its column in the database, in the order of
// the columns behind `ID`. Almost every value is text, formatted once when a download is decoded; a
// null QString is an absent value.

/// One run.
///
/// The constructor puts the run's name into T_UserName as well and ignores `andUserName`: the
/// column has always carried the name, and existing databases rely on it.
struct runData {
  QString T_RunStartTime;  ///< Start, "yyyy-MM-dd HH:mm:ss"; also how a download recognises a
                           ///< stored run.
  QString T_RunEndTime;    ///< End, same form.
  QString T_RunExTime;     ///< Elapsed time, "HH:MM:SS.hh".
  QString
      T_RunDistance;  ///< Centimetres; kilometres with three decimals in a run read from the store.
  QString T_RunCal;   ///< Ten thousandths of a kilocalorie.
  qint32 T_RunLap = 0;    ///< Number of laps.
  QString T_RunMaxSpeed;  ///< Tenths of km/h.
  QString T_RunAvgSpeed;  ///< Tenths of km/h.
  QString T_RunMaxHR;     ///< Beats per minute.
  QString T_RunAvgHR;     ///< Beats per minute.
  QString T_RunMinHR;     ///< Beats per minute.
  QString T_RunTimeZone;
  qint64 T_RunTrackPoint = 0;  ///< Number of track points.
  QString T_RunTrackMaxSpeed;
  QString T_RunName;
  QString T_RunType;
  QString T_RunAlti;  ///< "0" when the watch records altitude, else "1".
  QString T_RunAsc;
  QString T_RunDsc;
  qint64 T_Cnumber = 0;  ///< Activity number, from 1; ties the run to its laps and points.
  QString T_UserName;    ///< Always the run's name.
  QString T_IdNumber;

  runData() = default;
  /// Takes every property in the order of the members.
  runData(const QString& name, const QString& andRunEndTime, const QString& andRunExTime,
          const QString& andRunDistance, const QString& andRunCal, qint32 andRunLap,
          const QString& andRunMaxSpeed, const QString& andRunAvgSpeed, const QString& andRunMaxHR,
          const QString& andRunAvgHR, const QString& andRunMinHR, const QString& andRunTimeZone,
          qint64 andRunTrackPoint, const QString& andRunTrackMaxSpeed, const QString& andRunName,
          const QString& andRunType, const QString& andRunAlti, const QString& andRunAsc,
          const QString& andRunDsc, qint64 andCnumber, const QString& andUserName,
          const QString& andIdNumber);
  bool operator==(const runData&) const = default;
};

/// One lap of a run.
struct lapData {
  QString T_LapTime;      ///< Duration, "HH:MM:SS.hh".
  QString T_LapDistance;  ///< Centimetres.
  QString T_LapCal;       ///< Ten thousandths of a kilocalorie.
  QString T_LapType;      ///< Label, "Lap 1" or "AutoLap 1".
  qint32 T_LapNo = 0;     ///< From 1.
  QString T_LapMaxSpeed;  ///< Tenths of km/h.
  QString T_LapAvgSpeed;  ///< Tenths of km/h.
  QString T_LapMaxHR;     ///< Beats per minute.
  QString T_LapAvgHR;     ///< Beats per minute.
  QString T_LapMinHR;     ///< Beats per minute.
  QString T_LapTimeZone;
  QString T_LapAlti;
  QString T_LapAsc;
  QString T_LapDsc;
  qint64 T_Cnumber = 0;  ///< Activity number of the run.

  lapData() = default;
  /// Takes every property in the order of the members.
  lapData(const QString& name, const QString& andLapDistance, const QString& andLapCal,
          const QString& andLapType, qint32 andLapNo, const QString& andLapMaxSpeed,
          const QString& andLapAvgSpeed, const QString& andLapMaxHR, const QString& andLapAvgHR,
          const QString& andLapMinHR, const QString& andLapTimeZone, const QString& andLapAlti,
          const QString& andLapAsc, const QString& andLapDsc, qint64 andCnumber);
  bool operator==(const lapData&) const = default;
};

/// A track summary. Its table exists, but downloads never fill it.
struct trackData {
  QString T_TrackStartTime;
  QString T_TrackEndTime;
  QString T_TrackName;
  QString T_TrackDistance;
  qint64 T_TrackNumber = 0;
  QString T_TrackMaxSpeed;
  QString T_TrackAvgSpeed;
  QString T_TrackMaxHR;
  QString T_TrackAvgHR;
  QString T_TrackMinHR;
  QString T_TrackTimeZone;
  QString T_TrackCal;
  QString T_UserName;
  QString T_IDNumber;  ///< Capital D, unlike the run's T_IdNumber.
  qint64 T_Cnumber = 0;

  trackData() = default;
  /// Takes every property in the order of the members.
  trackData(const QString& name, const QString& andTrackEndTime, const QString& andTrackName,
            const QString& andTrackDistance, qint64 andTrackNumber, const QString& andTrackMaxSpeed,
            const QString& andTrackAvgSpeed, const QString& andTrackMaxHR,
            const QString& andTrackAvgHR, const QString& andTrackMinHR,
            const QString& andTrackTimeZone, const QString& andTrackCal, const QString& andUserName,
            const QString& andIDNumber, qint64 andCnumber);
  bool operator==(const trackData&) const = default;
};

/// One track point of a run.
struct trackPointData {
  QString T_PointTime;        ///< Time of day, "HH:MM:SS".
  QString T_PointLongitude;   ///< Degrees and minutes as received, such as 139°45.1756.
  QString T_PointLogSign;     ///< "E" or "W"; "0" marks a point without a position fix.
  QString T_PointLatitude;    ///< Degrees and minutes as received.
  QString T_PointLatSign;     ///< "N" or "S".
  QString T_PointLongitudeN;  ///< Decimal degrees without a sign.
  QString T_PointLatitudeN;   ///< Decimal degrees without a sign.
  QString T_PointSpeed;       ///< Fiftieths of km/h.
  QString T_PointHR;          ///< Fifths of a beat per minute.
  QString T_PointAlti;
  QString T_PointTimeZone;
  QString T_PointDistance;  ///< Centimetres from the start.
  QString T_PointCal;
  qint64 T_Setid = 0;    ///< Sequence number within the run, from 1.
  qint64 T_Cnumber = 0;  ///< Activity number of the run.

  trackPointData() = default;
  /// Takes every property in the order of the members.
  trackPointData(const QString& name, const QString& andPointLongitude,
                 const QString& andPointLogSign, const QString& andPointLatitude,
                 const QString& andPointLatSign, const QString& andPointLongitudeN,
                 const QString& andPointLatitudeN, const QString& andPointSpeed,
                 const QString& andPointHR, const QString& andPointAlti,
                 const QString& andPointTimeZone, const QString& andPointDistance,
                 const QString& andPointCal, qint64 andSetid, qint64 andCnumber);
  bool operator==(const trackPointData&) const = default;
};

/// Runs by "%02d" of the activity number ("05", "12", "123"); in a download batch by run key
/// ("0A").
using RunDictionary = QHash<QString, runData>;
/// Laps by activity number and lap number ("5-1"); in a download batch by run key and five digits
/// ("0A-00001").
using LapDictionary = QHash<QString, lapData>;
/// Track points by activity number and sequence number, or as in LapDictionary.
using PointDictionary = QHash<QString, trackPointData>;
