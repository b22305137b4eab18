#include "data/recordColumns.h"

namespace {

constexpr Column<runData> runColumns[]{{"T_RunStartTime", &runData::T_RunStartTime},
                                       {"T_RunEndTime ", &runData::T_RunEndTime},
                                       {"T_RunExTime ", &runData::T_RunExTime},
                                       {"T_RunDistance ", &runData::T_RunDistance},
                                       {"T_RunCal", &runData::T_RunCal},
                                       {"T_RunLap ", &runData::T_RunLap},
                                       {"T_RunMaxSpeed", &runData::T_RunMaxSpeed},
                                       {"T_RunAvgSpeed", &runData::T_RunAvgSpeed},
                                       {"T_RunMaxHR ", &runData::T_RunMaxHR},
                                       {"T_RunAvgHR", &runData::T_RunAvgHR},
                                       {"T_RunMinHR", &runData::T_RunMinHR},
                                       {"T_RunTimeZone", &runData::T_RunTimeZone},
                                       {"T_RunTrackPoint ", &runData::T_RunTrackPoint},
                                       {"T_RunTrackMaxSpeed ", &runData::T_RunTrackMaxSpeed},
                                       {"T_RunName", &runData::T_RunName},
                                       {"T_RunType", &runData::T_RunType},
                                       {"T_RunAlti", &runData::T_RunAlti},
                                       {"T_RunAsc ", &runData::T_RunAsc},
                                       {"T_RunDsc", &runData::T_RunDsc},
                                       {"T_Cnumber", &runData::T_Cnumber},
                                       {"T_UserName ", &runData::T_UserName},
                                       {"T_IdNumber ", &runData::T_IdNumber}};

// The columns name descent before ascent, the values give ascent before descent: the two are
// crossed in the table, and so in a lap that is read back. Existing databases rely on it.
constexpr Column<lapData> lapColumns[]{{"T_LapTime", &lapData::T_LapTime},
                                       {"T_LapDistance", &lapData::T_LapDistance},
                                       {"T_LapCal", &lapData::T_LapCal},
                                       {"T_LapType", &lapData::T_LapType},
                                       {"T_LapNo", &lapData::T_LapNo},
                                       {"T_LapMaxSpeed", &lapData::T_LapMaxSpeed},
                                       {"T_LapAvgSpeed", &lapData::T_LapAvgSpeed},
                                       {"T_LapMaxHR", &lapData::T_LapMaxHR},
                                       {"T_LapAvgHR", &lapData::T_LapAvgHR},
                                       {"T_LapMinHR", &lapData::T_LapMinHR},
                                       {"T_LapTimeZone", &lapData::T_LapTimeZone},
                                       {"T_LapAlti", &lapData::T_LapAlti},
                                       {"T_LapDsc", &lapData::T_LapAsc},
                                       {"T_LapAsc", &lapData::T_LapDsc},
                                       {"T_Cnumber ", &lapData::T_Cnumber}};

// The track's name fills the user's column too, which moves the values behind it on by one: the ID
// number's column gets the user, and the activity number's column the ID number. The activity
// number itself is not stored.
constexpr Column<trackData> trackColumns[]{{"T_TrackStartTime ", &trackData::T_TrackStartTime},
                                           {"T_TrackEndTime ", &trackData::T_TrackEndTime},
                                           {"T_TrackName ", &trackData::T_TrackName},
                                           {"T_TrackDistance ", &trackData::T_TrackDistance},
                                           {"T_TrackNumber ", &trackData::T_TrackNumber, true},
                                           {"T_TrackMaxSpeed ", &trackData::T_TrackMaxSpeed},
                                           {"T_TrackAvgSpeed ", &trackData::T_TrackAvgSpeed},
                                           {"T_TrackMaxHR ", &trackData::T_TrackMaxHR},
                                           {"T_TrackAvgHR ", &trackData::T_TrackAvgHR},
                                           {"T_TrackMinHR ", &trackData::T_TrackMinHR},
                                           {"T_TrackTimeZone ", &trackData::T_TrackTimeZone},
                                           {"T_TrackCal ", &trackData::T_TrackCal},
                                           {"T_UserName ", &trackData::T_TrackName},
                                           {"T_IDNumber ", &trackData::T_UserName},
                                           {"T_Cnumber ", &trackData::T_IDNumber, true}};

constexpr Column<trackPointData> pointColumns[]{
    {"T_PointTime ", &trackPointData::T_PointTime},
    {"T_PointLongitude ", &trackPointData::T_PointLongitude},
    {"T_PointLogSign ", &trackPointData::T_PointLogSign},
    {"T_PointLatitude ", &trackPointData::T_PointLatitude},
    {"T_PointLatSign ", &trackPointData::T_PointLatSign},
    {"T_PointLongitudeN ", &trackPointData::T_PointLongitudeN},
    {"T_PointLatitudeN ", &trackPointData::T_PointLatitudeN},
    {"T_PointSpeed ", &trackPointData::T_PointSpeed},
    {"T_PointHR ", &trackPointData::T_PointHR},
    {"T_PointAlti ", &trackPointData::T_PointAlti},
    {"T_PointTimeZone", &trackPointData::T_PointTimeZone},
    {"T_PointDistance", &trackPointData::T_PointDistance},
    {"T_PointCal ", &trackPointData::T_PointCal},
    {"T_Setid ", &trackPointData::T_Setid, true},
    {"T_Cnumber", &trackPointData::T_Cnumber, true}};

}  // namespace

const Insertion<runData> runInsertion{"Insert Into T_RunData (", runColumns, ") Values ("};
const Insertion<lapData> lapInsertion{"Insert Into T_LapData (", lapColumns, ")Values ("};
const Insertion<trackData> trackInsertion{"Insert Into T_TrackData(", trackColumns, ")Values("};
const Insertion<trackPointData> pointInsertion{"Insert Into T_TrackPointData (", pointColumns,
                                               ")Values("};
