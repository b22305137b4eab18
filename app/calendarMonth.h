#pragma once

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QtGlobal>

/// The geometry of the calendar month view as values, without a widget.
///
/// Coordinates are view points with the origin in the lower-left corner, x to the right and y
/// upward. Everything is fixed and does not follow the view's size.
namespace calendarMonth {

/// The extent that the drawing uses.
inline constexpr int width = 425;
inline constexpr int height = 150;

/// The two marks that step through the months.
enum class Mark { none, previous, next };

/// The mark whose rectangle holds `point`, edges included.
Mark markAt(QPointF point);

/// The corners of the triangle that draws `mark`; empty for none.
QList<QPointF> triangle(Mark mark);

/// Where the heading of weekday `column` (0 = Monday to 6 = Sunday) is drawn.
QPointF headingOrigin(int column);

/// Where the month's title is drawn.
inline constexpr QPointF titleOrigin(180, 135);

/// One day of the month on the view.
struct Day {
  qint32 number = 0;  ///< From 1.
  QPointF origin;     ///< Lower-left corner of the number's text.
  QRectF box;         ///< The box behind the number; `top()` is its lower edge, as y grows upward.
};

/// The days of a month of `count` days whose first day has the given weekday (1 = Sunday to
/// 7 = Saturday). The week starts on Monday; a month takes four to six rows.
QList<Day> days(qint32 firstWeekday, qint32 count);

}  // namespace calendarMonth
