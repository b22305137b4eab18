#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

/// The element "Trackpoint" of a TCX document, filled with one point after another.
class TcxTrackpoint {
 public:
  TcxTrackpoint();

  /// Makes the element show `point` at `time`. A point without a fix is an empty element.
  pugi::xml_node of(const trackPointData& point, const QByteArray& time);

 private:
  void setFixed(pugi::xml_node node, double value);
  void setDegrees(pugi::xml_node node, const QString& stored, bool asStored);

  pugi::xml_document document_;
  pugi::xml_node empty_;
  pugi::xml_node full_;
  // The texts that differ from point to point.
  pugi::xml_node time_;
  pugi::xml_node latitude_;
  pugi::xml_node longitude_;
  pugi::xml_node distance_;
  pugi::xml_node heartRate_;
  pugi::xml_node speed_;
  QByteArray value_;  // kept for its memory
};
