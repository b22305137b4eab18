#pragma once

#include "tools/watchsim/randomNumbers.h"
#include "tools/watchsim/routePath.h"
#include "tools/watchsim/watchBlocks.h"

#include <QDateTime>

#include <vector>

/// A recorded run as the watch holds it.
struct SimulatedRun {
  RunHeader header;
  std::vector<LapCounters> laps;
  std::vector<TrackPoint> points;
};

/// Runs a route second by second, as a watch on the runner's wrist records it: waits for a position
/// fix first, takes a lap at every kilometre and whenever the button is pressed, and rests now and
/// then without recording points.
class RunSimulation {
 public:
  /// `random` must outlive the simulation.
  RunSimulation(const Route& route, const QDateTime& start, RandomNumbers& random);

  /// The run that ends with point number `pointCount` (at least 1).
  SimulatedRun record(qint32 pointCount);

 private:
  /// What is gathered over a lap, and over the whole run.
  struct Extremes {
    qint32 maxSpeed = 0;  // cm/s
    qint32 maxHR = 0;     // fifths of a beat per minute, like minHR
    qint32 minHR = 255 * 5;
    void take(qint32 speed, qint32 hr);
  };

  void planRests(qint32 pointCount);
  void passSecond();
  void rest();
  void takePoint();
  void takeLap(bool isAutomatic, qint64 distance);
  void climb();
  void finish();
  qint64 caloriesAt(qint64 distance) const;

  RoutePath path_;
  QDateTime start_;
  RandomNumbers& random_;
  qint32 secondsPerPoint_ = 5;
  qint32 basePace_;  // cm/s
  Wander pace_;
  Wander effort_;
  Wander errorNorth_;
  Wander errorEast_;
  SimulatedRun run_;
  std::vector<qint32> rests_;  // numbers of the points after which the runner stops, falling
  qint32 pointsWithoutFix_ = 0;
  qint32 second_ = 0;
  qint64 distance_ = 0;
  qint32 speed_ = 0;  // cm/s
  qint32 hr_ = 0;     // fifths of a beat per minute
  qint64 hrSum_ = 0;  // beats per minute
  qint32 hrSamples_ = 0;
  qint32 altitude_;
  qint64 lapStart_ = 0;
  qint32 lapStartSecond_ = 0;
  Extremes lap_;
  Extremes whole_;
};
