#pragma once

#include "app/tableRows.h"
#include "data/records.h"

#include <cstddef>
#include <vector>

/// The rows of the points table. A run may have a million points, of which the table shows some
/// thirty: it keeps the points, not their texts, and makes a row when it is asked for. One thread
/// at a time.
class PointRows {
 public:
  PointRows() = default;
  /// A row per point of the run `number`, looked up as "<number>-<n>" for n up to the number of
  /// entries; a missing one leaves no gap.
  PointRows(PointDictionary points, qint64 number);

  std::size_t size() const { return order_.size(); }
  bool empty() const { return order_.empty(); }
  void clear() { *this = {}; }
  /// The row at that place, below size(); valid until the next one is asked for.
  const pViewData& operator[](std::size_t row) const;

 private:
  PointDictionary points_;  ///< What `order_` points into; shared with who else has the run.
  std::vector<const trackPointData*> order_;
  mutable std::size_t made_ = 0;  ///< Which row is the last one asked for, from 1; 0: none.
  mutable pViewData last_;        ///< That row: a table asks for one cell after another.
};
