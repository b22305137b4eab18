#include "stats/profileRows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

constexpr std::array curves{&ProfilePoint::speed, &ProfilePoint::heartRate,
                            &ProfilePoint::altitude};

/// The first point that is not before a place on the axis.
int firstFrom(const RunProfile& profile, ProfileAxis axis, double place) {
  const auto found = std::lower_bound(
      profile.points.begin(), profile.points.end(), place,
      [axis](const ProfilePoint& point, double limit) { return placeOf(point, axis) < limit; });
  return static_cast<int>(found - profile.points.begin());
}

const ProfilePoint& pointAt(const RunProfile& profile, int row) {
  return profile.points[static_cast<std::size_t>(row)];
}

/// Gathers the rows of one column of pixels that must be drawn.
class Column {
 public:
  explicit Column(const RunProfile& profile) : profile_(profile) {}

  void take(int row) {
    if (rows_.empty()) {
      rows_.push_back(row);
    } else if (pointAt(profile_, row).isAfterPause) {
      rows_.insert(rows_.end(), {row - 1, row});
    }
    last_ = row;
    for (std::size_t i = 0; i < curves.size(); ++i) {
      widen(extremes_[i], row, curves[i]);
    }
  }

  void flush(std::vector<int>& all) {
    rows_.push_back(last_);
    for (const Extremes& found : extremes_) {
      if (found.low >= 0) {
        rows_.insert(rows_.end(), {found.low, found.high});
      }
    }
    std::sort(rows_.begin(), rows_.end());
    all.insert(all.end(), rows_.begin(), std::unique(rows_.begin(), rows_.end()));
    rows_.clear();
    extremes_ = {};
  }

  bool isEmpty() const { return rows_.empty(); }

 private:
  struct Extremes {
    int low = -1;
    int high = -1;
  };

  void widen(Extremes& found, int row, std::optional<double> ProfilePoint::*curve) const {
    const auto value = pointAt(profile_, row).*curve;
    if (!value) {
      return;
    }
    if (found.low < 0 || *value < *(pointAt(profile_, found.low).*curve)) {
      found.low = row;
    }
    if (found.high < 0 || *value > *(pointAt(profile_, found.high).*curve)) {
      found.high = row;
    }
  }

  const RunProfile& profile_;
  std::vector<int> rows_;
  int last_ = 0;
  std::array<Extremes, curves.size()> extremes_;
};

}  // namespace

double placeOf(const ProfilePoint& point, ProfileAxis axis) {
  return axis == ProfileAxis::Distance ? point.along : point.elapsed;
}

int nearestPoint(const RunProfile& profile, ProfileAxis axis, double place) {
  const int count = static_cast<int>(profile.points.size());
  const int after = firstFrom(profile, axis, place);
  if (after == 0) {
    return count == 0 ? -1 : 0;
  }
  const double before = placeOf(pointAt(profile, after - 1), axis);
  const bool isBefore =
      after == count || place - before <= placeOf(pointAt(profile, after), axis) - place;
  return isBefore ? firstFrom(profile, axis, before) : after;
}

std::vector<int> profileRows(const RunProfile& profile, ProfileAxis axis, double from, double to,
                             int columns) {
  const int count = static_cast<int>(profile.points.size());
  const int first = std::max(firstFrom(profile, axis, from) - 1, 0);
  const int end = std::min(firstFrom(profile, axis, std::nextafter(to, HUGE_VAL)) + 1, count);
  std::vector<int> rows;
  const int perColumn = 2;
  if (!(to > from) || columns <= 0 || end - first <= columns * perColumn) {
    rows.resize(static_cast<std::size_t>(std::max(end - first, 0)));
    std::iota(rows.begin(), rows.end(), first);
    return rows;
  }
  Column column(profile);
  int current = -1;
  for (int row = first; row < end; ++row) {
    const double share = (placeOf(pointAt(profile, row), axis) - from) / (to - from);
    const int at = static_cast<int>(std::floor(std::clamp(share, -1.0, 2.0) * columns));
    if (at != current && !column.isEmpty()) {
      column.flush(rows);
    }
    current = at;
    column.take(row);
  }
  column.flush(rows);
  return rows;
}
