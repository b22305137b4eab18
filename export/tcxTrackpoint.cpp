#include "export/tcxTrackpoint.h"

#include "base/text.h"
#include "export/xmlDocument.h"
#include "export/xmlNamespaces.h"

TcxTrackpoint::TcxTrackpoint()
    : empty_(document_.append_child("Trackpoint")), full_(document_.append_child("Trackpoint")) {
  time_ = xml::addElement(full_, "Time");
  pugi::xml_node position = full_.append_child("Position");
  latitude_ = xml::addElement(position, "LatitudeDegrees");
  longitude_ = xml::addElement(position, "LongitudeDegrees");
  xml::addElement(full_, "AltitudeMeters", "0");
  distance_ = xml::addElement(full_, "DistanceMeters");
  pugi::xml_node heartRate = full_.append_child("HeartRateBpm");
  heartRate.append_attribute("xsi:type") = "HeartRateInBeatsPerMinute_t";
  heartRate_ = xml::addElement(heartRate, "Value");
  // Misspelt, and kept: stored files and their readers rely on it.
  pugi::xml_node extension = full_.append_child("Extersions").append_child("TPX");
  extension.append_attribute("xmlns") = xmlns::activityExtension;
  speed_ = xml::addElement(extension, "Speed");
  xml::addElement(full_, "SensorState", "Absent");
}

pugi::xml_node TcxTrackpoint::of(const trackPointData& point, const QByteArray& time) {
  const bool north = point.T_PointLatSign == u"N";
  if (!north && point.T_PointLatSign != u"S") {
    return empty_;
  }
  xml::setText(time_, time);
  setDegrees(latitude_, point.T_PointLatitudeN, north);
  setDegrees(longitude_, point.T_PointLongitudeN, point.T_PointLogSign == u"E");
  setFixed(distance_, text::toDouble(point.T_PointDistance) / 100.0);
  value_.resize(0);
  text::appendNumber(value_, text::toInt32(point.T_PointHR) / 5);
  xml::setText(heartRate_, value_);
  setFixed(speed_, text::toDouble(point.T_PointSpeed) / 50.0);
  return full_;
}

void TcxTrackpoint::setFixed(pugi::xml_node node, double value) {
  value_.resize(0);
  text::appendFixed(value_, value, 6);
  xml::setText(node, value_);
}

// Northern and eastern degrees are copied as they are stored, the others are computed.
void TcxTrackpoint::setDegrees(pugi::xml_node node, const QString& stored, bool asStored) {
  if (!asStored) {
    setFixed(node, -text::toDouble(stored));
    return;
  }
  value_.resize(0);
  xml::appendText(value_, stored);
  xml::setText(node, value_);
}
