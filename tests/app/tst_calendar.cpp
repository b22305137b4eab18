#include "app/DFView.h"
#include "app/calendarMonth.h"
#include "data/bundle.h"
#include "data/dataControl.h"

#include <QCursor>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int viewHeight = 200;  // higher than the drawing, so that its lower-left anchor shows

/// The part of a grabbed view at view coordinates: `area` has its origin below, y upward.
QImage cut(const QImage& image, const QRect& area) {
  return image.copy(area.x(), viewHeight - area.y() - area.height(), area.width(), area.height());
}

QRect cellOf(const calendarMonth::Day& day) {
  return {day.origin.toPoint(), QSize(20, 18)};
}

bool isRed(QColor c) {
  return c.red() > 180 && c.green() < 90 && c.blue() < 90;
}

bool isWhite(QColor c) {
  return c.red() > 200 && c.green() > 200 && c.blue() > 200;
}

template <typename Predicate>
int count(const QImage& image, Predicate&& holds) {
  int result = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      result += holds(image.pixelColor(x, y)) ? 1 : 0;
    }
  }
  return result;
}

}  // namespace

class CalendarTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder;

  static void storeRun(const QString& start) {
    const dataControl tables;
    runData run;
    run.T_RunStartTime = start;
    run.T_Cnumber = 1;
    dataControl store;
    QCOMPARE(store.inData({dataControl::runSqlStr(run)}), 1);
  }

  static QList<calendarMonth::Day> daysOf(const DFView& view) {
    const DFView::Components first = DFView::dateComponent(view.currentDay);
    return calendarMonth::days(first.weekday, DFView::monthCount(first.year, first.month));
  }

  /// The days of the month shown whose number satisfies the predicate somewhere.
  template <typename Predicate>
  static QList<int> daysWith(DFView& view, Predicate&& holds) {
    const QImage image = view.grab().toImage();
    QList<int> result;
    for (const calendarMonth::Day& day : daysOf(view)) {
      if (count(cut(image, cellOf(day)), holds) > 5) {
        result.append(day.number);
      }
    }
    return result;
  }

  static void clickAt(DFView& view, int x, int y) {
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(x, viewHeight - y));
  }

 private Q_SLOTS:
  void initTestCase();
  void init();
  void lengthOfMonths_data();
  void lengthOfMonths();
  void layout_data();
  void layout();
  void stepping_data();
  void stepping();
  void clicks_data();
  void clicks();
  void keysAndCursor();
  void runDays();
  void asksTheStoreAtEachDraw();
  void boxes();
  void header();
};

void CalendarTest::initTestCase() {
  setMainBundle({folder.filePath(u"Trakko.app"_s), u"Trakko"_s});
}

void CalendarTest::init() {
  QFile::remove(folder.filePath(u"gpsData.db3"_s));
}

void CalendarTest::lengthOfMonths_data() {
  QTest::addColumn<int>("year");
  QTest::addColumn<int>("month");
  QTest::addColumn<int>("days");
  QTest::newRow("century") << 1900 << 2 << 28;
  QTest::newRow("fourth century") << 2000 << 2 << 29;
  QTest::newRow("leap") << 2024 << 2 << 29;
  QTest::newRow("common") << 2023 << 2 << 28;
  QTest::newRow("month 0 counts as February") << 2024 << 0 << 29;
  QTest::newRow("month 13 counts as February") << 2023 << 13 << 28;
  for (int month = 1; month <= 12; ++month) {
    QTest::addRow("%d", month) << 2023 << month << QDate(2023, month, 1).daysInMonth();
  }
}

void CalendarTest::lengthOfMonths() {
  QFETCH(int, year);
  QFETCH(int, month);
  QTEST(DFView::monthCount(year, month), "days");
}

void CalendarTest::layout_data() {
  QTest::addColumn<QDate>("month");
  QTest::addColumn<QPointF>("first");
  QTest::addColumn<QPointF>("last");
  QTest::newRow("starts on Monday") << QDate(2024, 4, 1) << QPointF(50, 100) << QPointF(100, 20);
  QTest::newRow("starts on Sunday, six rows")
      << QDate(2023, 10, 1) << QPointF(350, 100) << QPointF(100, 0);
  QTest::newRow("starts on Friday") << QDate(2024, 3, 1) << QPointF(250, 100) << QPointF(350, 20);
  QTest::newRow("exactly four weeks") << QDate(2021, 2, 1) << QPointF(50, 100) << QPointF(350, 40);
}

void CalendarTest::layout() {
  QFETCH(QDate, month);
  const DFView::Components first = DFView::dateComponent(month);
  const auto days = calendarMonth::days(first.weekday, DFView::monthCount(first.year, first.month));
  QTEST(days.first().origin, "first");
  QTEST(days.last().origin, "last");
  for (const calendarMonth::Day& day : days) {
    QCOMPARE(day.origin.x(), 50.0 * month.addDays(day.number - 1).dayOfWeek());
    QCOMPARE(day.box, QRectF(day.origin.x() - 6, day.origin.y() - 2, 30, 20));
  }
}

void CalendarTest::stepping_data() {
  QTest::addColumn<QDate>("day");
  QTest::addColumn<int>("step");
  QTest::addColumn<QDate>("first");
  QTest::newRow("this month") << QDate(2024, 2, 29) << 0 << QDate(2024, 2, 1);
  QTest::newRow("back over the year's end") << QDate(2024, 1, 31) << 1 << QDate(2023, 12, 1);
  QTest::newRow("on over the year's end") << QDate(2023, 12, 31) << 2 << QDate(2024, 1, 1);
  QTest::newRow("back to a shorter month") << QDate(2023, 3, 31) << 1 << QDate(2023, 2, 1);
}

void CalendarTest::stepping() {
  QFETCH(QDate, day);
  QFETCH(int, step);
  DFView view;
  view.currentDay = day;
  view.checkPreNext = step;
  QTEST(view.returnCurrentD(), "first");
}

void CalendarTest::clicks_data() {
  QTest::addColumn<QPoint>("point");
  QTest::addColumn<QDate>("month");
  const QDate here(2024, 1, 1);
  const QDate before(2023, 12, 1);
  const QDate after(2024, 2, 1);
  QTest::newRow("left mark") << QPoint(15, 140) << before;
  QTest::newRow("left mark's corners") << QPoint(8, 135) << before;
  QTest::newRow("left mark's other corner") << QPoint(23, 145) << before;
  QTest::newRow("above the left mark") << QPoint(15, 150) << here;
  QTest::newRow("below the left mark") << QPoint(15, 134) << here;
  QTest::newRow("beside the left mark") << QPoint(24, 140) << here;
  QTest::newRow("right mark") << QPoint(400, 145) << after;
  QTest::newRow("beside the right mark") << QPoint(416, 140) << here;
  QTest::newRow("title") << QPoint(200, 140) << here;
  QTest::newRow("a day") << QPoint(55, 105) << here;
}

void CalendarTest::clicks() {
  QFETCH(QPoint, point);
  DFView view;
  view.resize(500, viewHeight);
  view.currentDay = QDate(2024, 1, 1);
  clickAt(view, point.x(), point.y());
  QTEST(view.currentDay, "month");
  QCOMPARE(view.checkPreNext, 0);
}

void CalendarTest::keysAndCursor() {
  DFView view;
  view.resize(425, viewHeight);
  view.currentDay = QDate(2024, 1, 1);
  view.show();
  QVERIFY(view.hasMouseTracking());
  QTest::keyClick(&view, Qt::Key_Left);
  QCOMPARE(view.currentDay, QDate(2023, 12, 1));
  QTest::keyClick(&view, Qt::Key_Right);
  QCOMPARE(view.currentDay, QDate(2024, 1, 1));

  QTest::mouseMove(&view, QPoint(410, viewHeight - 140));
  QTRY_COMPARE(view.cursor().shape(), Qt::PointingHandCursor);
  QTest::mouseMove(&view, QPoint(100, viewHeight - 140));
  QTRY_COMPARE(view.cursor().shape(), Qt::ArrowCursor);
}

void CalendarTest::runDays() {
  for (const QString& start :
       {u"2024-03-01 00:00:00"_s, u"2024-03-17 07:00:00"_s, u"2024-03-17 18:00:00"_s,
        u"2024-03-31 23:59:59"_s, u"2024-02-05 07:00:00"_s, u"2023-03-06 07:00:00"_s}) {
    storeRun(start);
  }
  DFView view;
  view.resize(425, viewHeight);
  view.currentDay = QDate(2024, 3, 20);
  const QList<int> red{1, 17, 31};
  QCOMPARE(daysWith(view, isRed), red);
  QList<int> white;
  for (int day = 1; day <= 31; ++day) {
    if (!red.contains(day)) {
      white.append(day);
    }
  }
  QCOMPARE(daysWith(view, isWhite), white);
  QCOMPARE(view.currentDay, QDate(2024, 3, 1));
  QVERIFY(view.accessibleDescription().startsWith(u"2024-03"));
}

// The view is told nothing about the store: the next draw finds what has changed.
void CalendarTest::asksTheStoreAtEachDraw() {
  DFView view;
  view.resize(425, viewHeight);
  view.currentDay = QDate(2024, 3, 1);
  QVERIFY(daysWith(view, isRed).isEmpty());
  storeRun(u"2024-03-09 07:00:00"_s);
  QCOMPARE(daysWith(view, isRed), QList<int>{9});
}

void CalendarTest::boxes() {
  DFView view;
  view.resize(425, viewHeight);
  view.currentDay = QDate(2024, 3, 1);
  view.monthDayDetail = {u"2024-03-14 "_s, u"2024-03-15"_s, u"2023-03-16 "_s};
  const auto isBoxed = [](QColor c) { return c == QColor(242, 170, 182); };
  QCOMPARE(daysWith(view, isBoxed), QList<int>{14});
  // 14 March stands in the third row: the box reaches from (194, 58) to (224, 78).
  const QImage image = view.grab().toImage();
  QVERIFY(count(cut(image, {195, 59, 5, 18}), isBoxed) == 5 * 18);
  QVERIFY(count(cut(image, {219, 59, 4, 18}), isBoxed) == 4 * 18);
  QCOMPARE(count(cut(image, {226, 50, 10, 30}), isBoxed), 0);
  QCOMPARE(count(cut(image, {194, 80, 30, 10}), isBoxed), 0);
}

void CalendarTest::header() {
  DFView view;
  view.resize(500, viewHeight);
  view.currentDay = QDate(2024, 3, 1);
  const QImage image = view.grab().toImage();
  QCOMPARE(image.pixelColor(0, 0), QColor(128, 128, 128));
  QCOMPARE(image.pixelColor(499, viewHeight - 1), QColor(128, 128, 128));
  const auto isBlack = [](QColor c) { return c.lightness() < 10; };
  QVERIFY(count(cut(image, {8, 135, 15, 10}), isBlack) > 50);
  QVERIFY(count(cut(image, {400, 135, 15, 10}), isBlack) > 50);
  // The marks point outward: the edge at their tip is narrower than the opposite one.
  QVERIFY(count(cut(image, {8, 135, 3, 10}), isBlack) <
          count(cut(image, {20, 135, 3, 10}), isBlack));
  QVERIFY(count(cut(image, {412, 135, 3, 10}), isBlack) <
          count(cut(image, {400, 135, 3, 10}), isBlack));
  for (int column = 0; column < 7; ++column) {
    const QPoint origin = calendarMonth::headingOrigin(column).toPoint();
    QVERIFY(count(cut(image, {origin, QSize(16, 20)}), isWhite) > 10);
  }
  QVERIFY(count(cut(image, {180, 135, 60, 15}), isWhite) > 50);
}

QTEST_MAIN(CalendarTest)
#include "tst_calendar.moc"
