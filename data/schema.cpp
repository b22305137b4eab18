#include "data/schema.h"

// The type is spelt VERCHAR, which SQLite takes for a text type just as VARCHAR. It stays as it is,
// so that the schema text is the same in old and new database files.
const std::array<const char*, 4> createTables = {
    " CREATE TABLE IF NOT EXISTS T_RunData(ID INTEGER PRIMARY KEY AUTOINCREMENT,"
    "T_RunStartTime VERCHAR(30),T_RunEndTime VERCHAR(30),T_RunExTime VERCHAR(30),"
    "T_RunDistance VERCHAR(30),T_RunCal VERCHAR(30),T_RunLap INTEGER,"
    "T_RunMaxSpeed VERCHAR(20),T_RunAvgSpeed VERCHAR(20),T_RunMaxHR VERCHAR(10),"
    "T_RunAvgHR VERCHAR(10),T_RunMinHR VERCHAR(10),T_RunTimeZone VERCHAR(20),"
    "T_RunTrackPoint INTEGER,T_RunTrackMaxSpeed VERCHAR(20),T_RunName VERCHAR(10),"
    "T_RunType VERCHAR(10),T_RunAlti VERCHAR(10),T_RunAsc VERCHAR(10),T_RunDsc VERCHAR(10),"
    "T_Cnumber INTEGER,T_UserName VERCHAR(50),T_IdNumber VERCHAR(20));",

    " CREATE TABLE IF NOT EXISTS T_LapData(ID INTEGER PRIMARY KEY AUTOINCREMENT,"
    "T_LapTime VERCHAR(30),T_LapDistance VERCHAR(30),T_LapCal VERCHAR(30),"
    "T_LapType VERCHAR(10),T_LapNo INTEGER,T_LapMaxSpeed VERCHAR(20),"
    "T_LapAvgSpeed VERCHAR(20),T_LapMaxHR VERCHAR(10),T_LapAvgHR VERCHAR(10),"
    "T_LapMinHR VERCHAR(10),T_LapTimeZone VERCHAR(20),T_LapAlti VERCHAR(10),"
    "T_LapAsc VERCHAR(10),T_LapDsc VERCHAR(10),T_Cnumber INTEGER);",

    " CREATE TABLE IF NOT EXISTS T_TrackData(ID INTEGER PRIMARY KEY AUTOINCREMENT,"
    "T_TrackStartTime VERCHAR(30),T_TrackEndTime VERCHAR(30),T_TrackName VERCHAR(30),"
    "T_TrackDistance VERCHAR(30),T_TrackNumber INTEGER,T_TrackMaxSpeed VERCHAR(20),"
    "T_TrackAvgSpeed VERCHAR(20),T_TrackMaxHR VERCHAR(10),T_TrackAvgHR VERCHAR(10),"
    "T_TrackMinHR VERCHAR(10),T_TrackTimeZone VERCHAR(20),T_TrackCal VERCHAR(10),"
    "T_UserName VERCHAR(50),T_IDNumber VERCHAR(10),T_Cnumber INTEGER);",

    " CREATE TABLE IF NOT EXISTS T_TrackPointData(ID INTEGER PRIMARY KEY AUTOINCREMENT,"
    "T_PointTime VERCHAR(30),T_PointLongitude VERCHAR(30),T_PointLogSign VERCHAR(2),"
    "T_PointLatitude VERCHAR(30),T_PointLatSign VERCHAR(2),T_PointLongitudeN VERCHAR(30),"
    "T_PointLatitudeN VERCHAR(30),T_PointSpeed VERCHAR(20),T_PointHR VERCHAR(20),"
    "T_PointAlti VERCHAR(10),T_PointTimeZone VERCHAR(30),T_PointDistance VERCHAR(30),"
    "T_PointCal VERCHAR(10),T_Setid INTEGER,T_Cnumber INTEGER);"};
