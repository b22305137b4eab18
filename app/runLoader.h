#pragma once

#include "app/pointRows.h"
#include "data/dataControl.h"
#include "data/records.h"
#include "map/trackOverlay.h"

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

/// Which run is to be read, and for which map page.
struct TrackRequest {
  qint64 number = 0;      ///< Activity number of the points and of the overlay.
  qint64 lapsNumber = 0;  ///< Activity number of the laps.
  bool google = true;     ///< The overlay's page: Google Maps, else AMap.
  QString arrow;          ///< The arrow of an earlier run, see buildGoogleOverlay().
  int load = 0;           ///< Number of the load of the tables that the run stands in.
  bool operator==(const TrackRequest&) const = default;
};

/// A run as read from the store, with what the window shows of it.
struct LoadedTrack {
  RunDictionary runs;  ///< All runs.
  LapDictionary laps;
  PointDictionary points;
  TrackOverlay overlay;
  PointRows pointRows;
  bool failed = false;  ///< Something could not be read; what is empty may not be so in the store.
};

/// Reads runs on one thread that lives while there is something to read.
///
/// The newest request wins: one that still waits gives way to it unread, and the result of one that
/// is being read is dropped. So running through a long list costs as much as its last run. Main
/// thread, receivers included.
class RunLoader {
 public:
  using Receiver = std::function<void(LoadedTrack& track)>;

  RunLoader();
  ~RunLoader();
  Q_DISABLE_COPY_MOVE(RunLoader)

  /// Reads the run and hands it to `receiver`, unless another request follows first. A request
  /// equal to the one that is not answered yet takes over its answer. Returns at once.
  void request(const TrackRequest& wanted, Receiver receiver);

  /// Spares reading all runs again, as long as they are still those of the file.
  void remember(dataControl::KnownRuns runs);

  /// Reads a run on the calling thread, whichever that is.
  static LoadedTrack read(const TrackRequest& wanted);

 private:
  struct Work;
  std::shared_ptr<Work> work_;  ///< Shared with the thread, which may outlive this object.
  QTimer rest_;                 ///< Since the last request.
};
