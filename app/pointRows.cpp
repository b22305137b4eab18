#include "app/pointRows.h"

#include "data/recordOrder.h"

#include <utility>

PointRows::PointRows(PointDictionary points, qint64 number)
    : points_(std::move(points)),
      // The point keys carry the number as a 32-bit one, unlike the lap keys.
      order_(inOrder(std::as_const(points_), static_cast<qint32>(number))) {
  std::erase(order_, nullptr);
}

const pViewData& PointRows::operator[](std::size_t row) const {
  if (made_ != row + 1) {
    last_ = pointRow(*order_[row]);
    made_ = row + 1;
  }
  return last_;
}
