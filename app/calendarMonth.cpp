#include "app/calendarMonth.h"

namespace calendarMonth {

namespace {

constexpr qreal columnWidth = 50;
constexpr qreal rowHeight = 20;
constexpr qreal headingBottom = 120;

// Weekdays count from Sunday, the columns from Monday.
constexpr qint32 sunday = 1;
constexpr qint32 monday = 2;
constexpr qint32 daysOfWeek = 7;

bool between(qreal low, qreal value, qreal high) {
  return low <= value && value <= high;
}

}  // namespace

Mark markAt(QPointF point) {
  if (!between(135, point.y(), 145)) {
    return Mark::none;
  }
  if (between(8, point.x(), 23)) {
    return Mark::previous;
  }
  return between(400, point.x(), 415) ? Mark::next : Mark::none;
}

QList<QPointF> triangle(Mark mark) {
  switch (mark) {
    case Mark::previous:
      return {{8, 140}, {23, 145}, {23, 135}};
    case Mark::next:
      return {{415, 140}, {400, 145}, {400, 135}};
    case Mark::none:
      break;
  }
  return {};
}

QPointF headingOrigin(int column) {
  return {columnWidth * (column + 1), headingBottom};
}

QList<Day> days(qint32 firstWeekday, qint32 count) {
  QList<Day> result;
  result.reserve(count);
  qint32 weekday = firstWeekday;
  qint32 column = weekday == sunday ? daysOfWeek : weekday - 1;
  // A Monday opens a row of its own below, so a month that starts with one begins above the first.
  qint32 row = weekday == monday ? 0 : 1;
  for (qint32 number = 1; number <= count; ++number) {
    if (weekday == monday) {
      ++row;
      column = 1;
    }
    const qreal x = columnWidth * column;
    const qreal y = headingBottom - rowHeight * row;
    result.append({number, {x, y}, {x - 6, y - 2, 30, rowHeight}});
    weekday = weekday == daysOfWeek ? sunday : weekday + 1;
    ++column;
  }
  return result;
}

}  // namespace calendarMonth
