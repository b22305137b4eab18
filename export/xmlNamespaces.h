#pragma once

/// Published names of the formats that the exports write: Training Center XML version 2 and its
/// extensions by Garmin (https://www8.garmin.com/xmlschemas/), GPX 1.1 by TopoGrafix
/// (https://www.topografix.com/GPX/1/1/), XML Schema by the W3C.
namespace xmlns {

inline constexpr char schemaInstance[] = "http://www.w3.org/2001/XMLSchema-instance";
inline constexpr char trainingCenter[] =
    "http://www.garmin.com/xmlschemas/TrainingCenterDatabase/v2";
inline constexpr char trainingCenterSchema[] =
    "http://www.garmin.com/xmlschemas/TrainingCenterDatabasev2.xsd";
inline constexpr char activityExtension[] = "http://www.garmin.com/xmlschemas/ActivityExtension/v2";
inline constexpr char trackPointExtension[] =
    "http://www.garmin.com/xmlschemas/TrackPointExtension/v1";
inline constexpr char trackPointExtensionSchema[] =
    "http://www.garmin.com/xmlschemas/TrackPointExtensionv1.xsd";
inline constexpr char gpx[] = "http://www.topografix.com/GPX/1/1";
inline constexpr char gpxSchema[] = "http://www.topografix.com/GPX/1/1/gpx.xsd";

}  // namespace xmlns
