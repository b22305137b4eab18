#pragma once

#include <QtGlobal>

#include <random>

/// Random whole numbers that are the same for the same seed on every machine: the standard fixes
/// the engine but not its distributions, so these are made here, and without floating point.
class RandomNumbers {
 public:
  explicit RandomNumbers(quint32 seed) : engine_(seed) {}

  /// A number from `lowest` to `highest`, both included.
  qint32 between(qint32 lowest, qint32 highest) {
    const auto count = static_cast<quint64>(qint64{highest} - lowest + 1);
    return static_cast<qint32>(lowest + static_cast<qint64>((engine_() * count) >> 32U));
  }

 private:
  std::mt19937 engine_;
};

/// A value that wanders smoothly between random knots, as a runner's pace or the error of a
/// position does.
class Wander {
 public:
  /// Stays within -`amplitude` ... `amplitude`, with a knot every `period` steps.
  Wander(RandomNumbers& random, qint32 amplitude, qint32 period)
      : random_(random), amplitude_(amplitude), period_(period) {}

  qint32 next() {
    if (step_ == 0) {
      from_ = to_;
      to_ = random_.between(-amplitude_, amplitude_);
    }
    const qint32 value = from_ + (to_ - from_) * step_ / period_;
    step_ = (step_ + 1) % period_;
    return value;
  }

 private:
  RandomNumbers& random_;
  qint32 amplitude_;
  qint32 period_;
  qint32 step_ = 0;
  qint32 from_ = 0;
  qint32 to_ = 0;
};
