#include "tools/watchsim/runSimulation.h"

#include <algorithm>
#include <functional>

namespace {

constexpr qint64 automaticLap = 100'000;  // centimetres

/// cm/s in tenths of km/h.
qint32 lapSpeed(qint64 speed) {
  return static_cast<qint32>(speed * 36 / 100);
}

}  // namespace

void RunSimulation::Extremes::take(qint32 speed, qint32 hr) {
  maxSpeed = std::max(maxSpeed, speed);
  maxHR = std::max(maxHR, hr);
  minHR = std::min(minHR, hr);
}

RunSimulation::RunSimulation(const Route& route, const QDateTime& start, RandomNumbers& random)
    : path_(route),
      start_(start),
      random_(random),
      basePace_(random.between(255, 345)),
      pace_(random, 25, 40),
      effort_(random, 25, 90),
      errorNorth_(random, 22, 9),
      errorEast_(random, 26, 11),
      hr_(5 * random.between(68, 82)),
      altitude_(path_.altitudeAt(0)) {
  run_.header.start = start;
  run_.header.name = route.name;
}

SimulatedRun RunSimulation::record(qint32 pointCount) {
  // About three quarters of an hour, whatever the number of points.
  secondsPerPoint_ = std::clamp(2700 / pointCount, 1, 5);
  pointsWithoutFix_ = std::min(random_.between(3, 8), pointCount / 10);
  planRests(pointCount);
  takePoint();
  while (static_cast<qint32>(run_.points.size()) < pointCount) {
    for (qint32 i = 0; i < secondsPerPoint_; ++i) {
      passSecond();
    }
    takePoint();
    if (!rests_.empty() && static_cast<qint32>(run_.points.size()) == rests_.back()) {
      rests_.pop_back();
      rest();
    }
  }
  finish();
  return run_;
}

void RunSimulation::planRests(qint32 pointCount) {
  if (pointCount < 60) {
    return;
  }
  for (qint32 count = random_.between(1, 3); count > 0; --count) {
    rests_.push_back(random_.between(pointCount / 5, pointCount - 15));
  }
  std::sort(rests_.begin(), rests_.end(), std::greater());
  rests_.erase(std::unique(rests_.begin(), rests_.end()), rests_.end());
}

void RunSimulation::passSecond() {
  ++second_;
  const bool isRunning = static_cast<qint32>(run_.points.size()) >= pointsWithoutFix_;
  const qint32 wanted = isRunning ? basePace_ + pace_.next() : 0;
  speed_ += std::clamp(wanted - speed_, -120, 90);
  distance_ += speed_;
  // The heart follows the effort within about a minute, and tires slowly.
  const qint32 tired = std::min(second_ / 120, 25);
  const qint32 load = 5 * (80 + speed_ / 5 + tired) + effort_.next();
  hr_ += std::clamp((load - hr_) / 20, -5, 5);
  hrSum_ += hr_ / 5;
  ++hrSamples_;
  lap_.take(speed_, hr_);
  whole_.take(speed_, hr_);
  climb();
  if (distance_ - lapStart_ >= automaticLap) {
    takeLap(true, lapStart_ + automaticLap);
  }
}

void RunSimulation::climb() {
  const qint32 altitude = path_.altitudeAt(distance_);
  run_.header.ascent += std::max(altitude - altitude_, 0);
  run_.header.descent += std::max(altitude_ - altitude, 0);
  altitude_ = altitude;
}

void RunSimulation::rest() {
  // Every second rest is marked with the lap button.
  if (random_.between(0, 1) == 0 && distance_ - lapStart_ > automaticLap / 10) {
    takeLap(false, distance_);
  }
  const qint32 seconds = random_.between(65, 240);
  second_ += seconds;
  hr_ = std::max(hr_ - seconds, 5 * 95);
  speed_ = 0;
  takePoint();
}

void RunSimulation::takePoint() {
  TrackPoint point;
  point.timeOfDay = (start_.time().msecsSinceStartOfDay() / 1000 + second_) % 86'400;
  point.elapsed = second_;
  point.distance = distance_;
  point.speed = speed_ * 9 / 5;
  point.hr = hr_;
  point.hasFix = static_cast<qint32>(run_.points.size()) >= pointsWithoutFix_;
  if (point.hasFix) {
    const Place place = path_.at(distance_);
    point.latitude = (place.latitude + errorNorth_.next()) * 3 / 5;
    point.longitude = (place.longitude + errorEast_.next()) * 3 / 5;
  }
  point.calories = static_cast<qint32>(caloriesAt(distance_) / 10'000);
  point.altitude = altitude_;
  run_.points.push_back(point);
}

void RunSimulation::takeLap(bool isAutomatic, qint64 distance) {
  LapCounters lap;
  lap.seconds = second_;
  lap.hundredths = random_.between(0, 99);
  lap.distance = distance;
  lap.calories = caloriesAt(distance);
  lap.maxSpeed = lapSpeed(lap_.maxSpeed);
  // A lap of few seconds may begin with most of a second that was run before it.
  lap.avgSpeed = std::min(
      lap.maxSpeed, lapSpeed((distance - lapStart_) / std::max(second_ - lapStartSecond_, 1)));
  lap.isAutomatic = isAutomatic;
  lap.hrSum = hrSum_;
  lap.hrSamples = hrSamples_;
  lap.maxHR = lap_.maxHR / 5;
  lap.minHR = std::min(lap_.minHR, lap_.maxHR) / 5;
  lap.altitude = altitude_;
  run_.laps.push_back(lap);
  lapStart_ = distance;
  lapStartSecond_ = second_;
  lap_ = {};
}

void RunSimulation::finish() {
  takeLap(false, distance_);
  RunHeader& header = run_.header;
  const qint64 average = distance_ / std::max(second_, 1);
  header.lapCount = static_cast<qint32>(run_.laps.size());
  header.pointCount = static_cast<qint32>(run_.points.size());
  header.maxSpeed = lapSpeed(whole_.maxSpeed);
  header.avgSpeed = lapSpeed(average);
  header.maxHR = whole_.maxHR / 5;
  header.minHR = std::min(whole_.minHR, whole_.maxHR) / 5;
  header.avgHR = static_cast<qint32>(hrSum_ / std::max(hrSamples_, 1));
  header.pace = average > 0 ? static_cast<qint32>(automaticLap / average) : 0;
}

qint64 RunSimulation::caloriesAt(qint64 distance) const {
  return distance * 62 / 10;  // 62 kcal a kilometre
}
