#pragma once

#include "data/records.h"
#include "stats/profile.h"

#include <QObject>
#include <QTimer>

#include <memory>

class ProfilePane;
class QTableView;
class TrakkoAppDelegate;

/// Keeps profile, points table, laps table and map at the same point of the run that is shown:
/// which of them the user points at, the others follow. Main thread.
class ProfileLink : public QObject {
  Q_OBJECT

 public:
  /// The controller's outlets are connected; it and the pane must outlive the link.
  ProfileLink(TrakkoAppDelegate* controller, ProfilePane* pane);

  /// The map's page begins anew, without the marker.
  void mapReset();

 private:
  void readRun();
  void takeRun(const std::shared_ptr<const RunProfile>& run);
  void pointFromProfile(int row);
  void pointFromTable();
  void lapFromTable();
  void showRow(int row);
  void showOnMap(int row);

  TrakkoAppDelegate* controller_;
  ProfilePane* pane_;
  QTimer tablesChanged_;
  PointDictionary points_;  ///< Of the run that is shown.
  qint64 number_ = 0;
  std::shared_ptr<const RunProfile> run_;
  int newestReading_ = 0;
  bool isFollowing_ = false;  ///< The tables change because the profile or the link asks for it.
  bool hasMarker_ = false;    ///< The page has shown one; only then it can take it away.
};
