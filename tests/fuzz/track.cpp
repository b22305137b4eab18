// Any texts as a run's laps and points, a field a line: what becomes of them on the map and in
// both exports. The map gets numbers only, readers get XML.

#include "export/gpxWriter.h"
#include "export/tcxWriter.h"
#include "map/trackOverlay.h"
#include "tests/fuzz/fuzz.h"

#include <QRegularExpression>

#include <pugixml.hpp>

namespace {

void requireXml(const QByteArray& document) {
  pugi::xml_document read;
  require(document.isNull() || read.load_buffer(document.constData(), size_t(document.size())));
}

void requireNumbers(const TrackOverlay& track) {
  static const QRegularExpression harmless("^[-+A-Za-z0-9.,()\\[\\]{}: ]*$");
  for (const QString& text : {track.expression, track.breakPointStr, track.arrPointStr}) {
    require(harmless.match(text).hasMatch());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet();
  QStringList fields =
      QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)).split(u'\n');
  const auto next = [&fields] { return fields.isEmpty() ? QString() : fields.takeFirst(); };
  const QString start = next();
  const QString offset = next();
  LapDictionary laps;
  lapData& lap = laps["7-1"];
  lap.T_LapTime = next();
  lap.T_LapDistance = next();
  lap.T_LapCal = next();
  lap.T_LapMaxSpeed = lap.T_LapMaxHR = lap.T_LapAvgHR = next();
  PointDictionary points;
  for (int i = 1; !fields.isEmpty(); ++i) {
    trackPointData& point = points[QString("7-%1").arg(i)];
    for (QString trackPointData::*field :
         {&trackPointData::T_PointTime, &trackPointData::T_PointLatSign,
          &trackPointData::T_PointLogSign, &trackPointData::T_PointLatitudeN,
          &trackPointData::T_PointLongitudeN, &trackPointData::T_PointSpeed,
          &trackPointData::T_PointHR, &trackPointData::T_PointDistance}) {
      point.*field = next();
    }
  }
  requireNumbers(buildGoogleOverlay(points, 7, {}));
  requireNumbers(buildGDOverlay(points, 7, {}));
  requireXml(writeTcx(laps, points, 7, start, offset));
  requireXml(writeGpx(points, 7, start, offset));
  return 0;
}
