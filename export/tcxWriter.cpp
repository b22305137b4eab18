#include "export/tcxWriter.h"

#include "base/text.h"
#include "data/recordOrder.h"
#include "export/pointTime.h"
#include "export/tcxTrackpoint.h"
#include "export/xmlDocument.h"
#include "export/xmlNamespaces.h"

#include <QByteArrayList>
#include <QStringView>

#include <algorithm>
#include <pugixml.hpp>
#include <utility>
#include <vector>

namespace {

constexpr qsizetype dateLength = 10;
constexpr unsigned pointDepth = 5;  // of a "Trackpoint" below the root

const trackPointData noPoint;

// The run's records in order; one that is missing counts as one without values.
template <typename Record>
std::vector<const Record*> countedRecords(const QHash<QString, Record>& records, qint64 number) {
  static const Record absent;
  std::vector<const Record*> counted = inOrder(records, number);
  std::replace(counted.begin(), counted.end(), static_cast<const Record*>(nullptr), &absent);
  return counted;
}

// The duration's fields stand at fixed places of "HH:MM:SS.hh". The hundredths are added as whole
// seconds. Kept: stored files and their readers rely on it.
double lapSeconds(QStringView time) {
  const auto field = [time](qsizetype at) { return text::toDouble(time.mid(at, 2)); };
  return 3600 * field(0) + 60 * field(3) + field(6) + field(9);
}

QByteArray fixed(double value, int decimals) {
  QByteArray printed;
  text::appendFixed(printed, value, decimals);
  return printed;
}

// Writes the laps of one run. The points are handed to them one after another, so the next point,
// the distance a lap is measured from and the last point carry over from lap to lap.
class TcxLaps {
 public:
  TcxLaps(const LapDictionary& laps, const PointDictionary& points, qint64 number, PointTime time);

  void addTo(pugi::xml_node activity, const QByteArray& startTime);

  QByteArrayList tracks;  // the printed points of every lap that has some

 private:
  pugi::xml_node addLap(pugi::xml_node activity, const lapData& lap, const QByteArray& startTime);
  QByteArray track(double lapDistance);

  std::vector<const lapData*> laps_;
  std::vector<const trackPointData*> points_;
  PointTime time_;
  TcxTrackpoint trackpoint_;
  size_t nextPoint_ = 0;
  double lapStart_ = 0;  // centimetres
  const trackPointData* lastPoint_ = &noPoint;
};

TcxLaps::TcxLaps(const LapDictionary& laps, const PointDictionary& points, qint64 number,
                 PointTime time)
    : laps_(countedRecords(laps, number)),
      points_(countedRecords(points, number)),
      time_(std::move(time)) {}

void TcxLaps::addTo(pugi::xml_node activity, const QByteArray& startTime) {
  for (size_t i = 0; i < laps_.size(); ++i) {
    const lapData& lap = *laps_[i];
    // A later lap starts at the time of the point that ended the one before, not at its own first
    // point.
    pugi::xml_node node = addLap(activity, lap, i == 0 ? startTime : time_.of(*lastPoint_));
    pugi::xml_node trackNode = node.append_child("Track");
    const QByteArray points = track(text::toDouble(lap.T_LapDistance));
    if (!points.isEmpty()) {
      xml::addPlace(trackNode);
      tracks.append(points);
    }
  }
}

pugi::xml_node TcxLaps::addLap(pugi::xml_node activity, const lapData& lap,
                               const QByteArray& startTime) {
  pugi::xml_node node = activity.append_child("Lap");
  xml::setText(node.append_attribute("StartTime"), startTime);
  xml::addElement(node, "TotalTimeSeconds", fixed(lapSeconds(lap.T_LapTime), 3));
  xml::addElement(node, "DistanceMeters", fixed(text::toDouble(lap.T_LapDistance) / 100.0, 5));
  xml::addElement(node, "MaximumSpeed", fixed(text::toDouble(lap.T_LapMaxSpeed) / 10.0, 2));
  xml::addElement(node, "Calories", fixed(text::toDouble(lap.T_LapCal) / 10000.0, 6));
  xml::addElement(node, "Intensity", "Active");
  xml::addElement(node, "TriggerMethod", "Manual");
  return node;
}

// The point that takes a lap beyond its distance is still the lap's own and its last one; the next
// lap is measured from there. Laps left over when the points are used up get none.
QByteArray TcxLaps::track(double lapDistance) {
  QByteArray printed;
  while (nextPoint_ < points_.size()) {
    const trackPointData& point = *points_[nextPoint_++];
    lastPoint_ = &point;
    xml::appendElement(printed, trackpoint_.of(point, time_.of(point)), pointDepth);
    const double distance = text::toDouble(point.T_PointDistance);
    if (distance - lapStart_ > lapDistance) {
      lapStart_ = distance;
      break;
    }
  }
  return printed;
}

pugi::xml_node addRoot(pugi::xml_document& document) {
  pugi::xml_node root = document.append_child("TrainingCenterDatabase");
  root.append_attribute("xmlns") = xmlns::trainingCenter;
  root.append_attribute("xmlns:xsi") = xmlns::schemaInstance;
  xml::setText(root.append_attribute("xsi:schemaLocation"),
               QByteArray(xmlns::trainingCenter) + ' ' + xmlns::trainingCenterSchema);
  return root;
}

void addAuthor(pugi::xml_node root) {
  pugi::xml_node author = root.append_child("Author");
  author.append_attribute("xsi:type") = "Application_t";
  xml::addElement(author.append_child("Build"), "Type", "Release");
  xml::addElement(author, "LangID", "EN");
}

}  // namespace

QByteArray writeTcx(const LapDictionary& laps, const PointDictionary& points, qint64 number,
                    const QString& startTime, const QString& offset) {
  if (startTime.size() < dateLength) {
    return {};
  }
  QByteArray startStamp;
  xml::appendText(startStamp, QString(startTime).replace(u' ', u'T') + offset);
  TcxLaps lapWriter(laps, points, number, PointTime(startTime.left(dateLength) + u'T', offset));

  pugi::xml_document document;
  xml::addDeclaration(document);
  pugi::xml_node root = addRoot(document);
  pugi::xml_node activity = root.append_child("Activities").append_child("Activity");
  activity.append_attribute("Sport") = "Running";
  xml::addElement(activity, "Id", startStamp);
  lapWriter.addTo(activity, startStamp);
  addAuthor(root);
  return xml::print(document, lapWriter.tracks);
}

QString tcxFileName(const QString& startTime) {
  return QString(startTime).removeIf(
      [](QChar c) { return c == u'T' || c == u' ' || c == u'-' || c == u':'; });
}
