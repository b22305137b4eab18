#include "export/gpxWriter.h"

#include "base/text.h"
#include "data/recordOrder.h"
#include "export/pointTime.h"
#include "export/xmlDocument.h"
#include "export/xmlNamespaces.h"

#include <pugixml.hpp>

namespace {

constexpr qsizetype datePrefixLength = 11;  // "2014-05-01T"
constexpr qsizetype bytesPerPoint = 140;
constexpr unsigned pointDepth = 3;  // of a "trkpt" below the root

bool isOneOf(const QString& sign, QChar positive, QChar negative) {
  return sign.size() == 1 && (sign[0] == positive || sign[0] == negative);
}

bool hasFix(const trackPointData& point) {
  return isOneOf(point.T_PointLatSign, u'N', u'S') && isOneOf(point.T_PointLogSign, u'E', u'W');
}

pugi::xml_node addRoot(pugi::xml_document& document) {
  pugi::xml_node root = document.append_child("gpx");
  root.append_attribute("xmlns:tc2") = xmlns::trainingCenter;
  root.append_attribute("xmlns:xsi") = xmlns::schemaInstance;
  root.append_attribute("xmlns:tp1") = xmlns::trackPointExtension;
  root.append_attribute("xmlns") = xmlns::gpx;
  root.append_attribute("version") = "1.1";
  root.append_attribute("creator") = "TC2 to GPX11 XSLT stylesheet";
  const QByteArrayList locations{xmlns::gpx, xmlns::gpxSchema, xmlns::trackPointExtension,
                                 xmlns::trackPointExtensionSchema};
  xml::setText(root.append_attribute("xsi:schemaLocation"), locations.join("  "));
  return root;
}

// The element "trkpt", filled with one point after another.
class GpxTrackPoint {
 public:
  GpxTrackPoint();

  // The element with the values of `point`, which has a fix.
  pugi::xml_node of(const trackPointData& point, const QByteArray& time);

 private:
  void setDegrees(pugi::xml_attribute attribute, const QString& value, bool negative);

  pugi::xml_document document_;
  pugi::xml_node node_;
  pugi::xml_attribute latitude_;
  pugi::xml_attribute longitude_;
  pugi::xml_node time_;
  QByteArray value_;  // kept for its memory
};

GpxTrackPoint::GpxTrackPoint()
    : node_(document_.append_child("trkpt")),
      latitude_(node_.append_attribute("lat")),
      longitude_(node_.append_attribute("lon")),
      time_(xml::addElement(node_, "time")) {}

pugi::xml_node GpxTrackPoint::of(const trackPointData& point, const QByteArray& time) {
  setDegrees(latitude_, point.T_PointLatitudeN, point.T_PointLatSign == u"S");
  setDegrees(longitude_, point.T_PointLongitudeN, point.T_PointLogSign == u"W");
  xml::setText(time_, time);
  return node_;
}

void GpxTrackPoint::setDegrees(pugi::xml_attribute attribute, const QString& value, bool negative) {
  const double degrees = text::toDouble(value);
  value_.resize(0);
  text::appendFixed(value_, negative ? -degrees : degrees, 6);
  xml::setText(attribute, value_);
}

QByteArray printPoints(const PointDictionary& points, qint64 number, PointTime time) {
  QByteArray printed;
  printed.reserve(points.size() * bytesPerPoint);
  GpxTrackPoint trackPoint;
  for (const trackPointData* point : inOrder(points, number)) {
    if (point != nullptr && hasFix(*point)) {
      xml::appendElement(printed, trackPoint.of(*point, time.of(*point)), pointDepth);
    }
  }
  return printed;
}

}  // namespace

QByteArray writeGpx(const PointDictionary& points, qint64 number, const QString& startTime,
                    const QString& offset) {
  if (startTime.size() < datePrefixLength) {
    return {};
  }
  const QString startStamp = QString(startTime).replace(u' ', u'T');
  pugi::xml_document document;
  xml::addDeclaration(document);
  pugi::xml_node track = addRoot(document).append_child("trk");
  QByteArray name;
  xml::appendText(name, startStamp + offset);
  xml::addElement(track, "name", name);

  pugi::xml_node segment = track.append_child("trkseg");
  const QByteArray printed =
      printPoints(points, number, PointTime(startStamp.left(datePrefixLength), offset));
  if (printed.isEmpty()) {
    return xml::print(document, {});
  }
  xml::addPlace(segment);
  return xml::print(document, {printed});
}

QString gpxFileName(const QString& startTime) {
  return QString(startTime).removeIf(
      [](QChar c) { return c == u'/' || c == u' ' || c == u'-' || c == u':'; });
}
