#include "app/DFView.h"
#include "app/calendarMonth.h"
#include "data/bundle.h"
#include "data/dataControl.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int viewHeight = 200;  // higher than the drawing, so that its lower-left anchor shows

const QDate january(2024, 1, 1);
const QDate march(2024, 3, 1);

constexpr auto isRed = [](QColor c) { return c.red() > 180 && c.green() < 90 && c.blue() < 90; };
constexpr auto isWhite = [](QColor c) { return qMin(c.red(), qMin(c.green(), c.blue())) > 200; };
constexpr auto isBlack = [](QColor c) { return c.lightness() < 10; };
constexpr auto isBoxed = [](QColor c) { return c == QColor(242, 170, 182); };

QList<calendarMonth::Day> daysOf(QDate month) {
  const DFView::Components first = DFView::dateComponent(month);
  return calendarMonth::days(first.weekday, DFView::monthCount(first.year, first.month));
}

struct View : DFView {
  explicit View(QDate day) {
    resize(500, viewHeight);
    currentDay = day;
  }

  /// How many points of an area have the colour; the origin is below, y upward.
  static int count(const QImage& image, const QRect& area, bool (*holds)(QColor)) {
    int result = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
      for (int x = area.left(); x <= area.right(); ++x) {
        result += holds(image.pixelColor(x, viewHeight - 1 - y)) ? 1 : 0;
      }
    }
    return result;
  }

  /// The days of the month shown that have the colour somewhere.
  QList<int> daysWith(bool (*holds)(QColor)) {
    const QImage image = grab().toImage();
    QList<int> result;
    for (const calendarMonth::Day& day : daysOf(currentDay)) {
      if (count(image, {day.origin.toPoint(), QSize(20, 18)}, holds) > 5) {
        result.append(day.number);
      }
    }
    return result;
  }
};

}  // namespace

class CalendarTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder;

  static void storeRuns(const QStringList& starts) {
    const dataControl tables;
    dataControl::Statements statements;
    for (const QString& start : starts) {
      runData run;
      run.T_RunStartTime = start;
      statements.push_back(dataControl::runSqlStr(run));
    }
    QCOMPARE(dataControl().inData(statements), 1);
  }

 private Q_SLOTS:
  void init() {
    setMainBundle({folder.filePath("Trakko.app"), "Trakko"});
    QFile::remove(folder.filePath("gpsData.db3"));
  }

  static void lengthOfMonths() {
    for (int month = 1; month <= 12; ++month) {
      QCOMPARE(DFView::monthCount(2023, month), QDate(2023, month, 1).daysInMonth());
    }
    // Any other month counts as February.
    const QList<std::array<int, 3>> rows{
        {1900, 2, 28}, {2000, 2, 29}, {2024, 2, 29}, {2024, 0, 29}, {2023, 13, 28}};
    for (const auto& [year, month, days] : rows) {
      QCOMPARE(DFView::monthCount(year, month), days);
    }
  }

  static void layout() {
    const QList<std::tuple<QDate, QPointF, QPointF>> rows{
        {{2024, 4, 1}, {50, 100}, {100, 20}},   // starts on Monday
        {{2023, 10, 1}, {350, 100}, {100, 0}},  // starts on Sunday and takes six rows
        {{2024, 3, 1}, {250, 100}, {350, 20}},  // starts on Friday
        {{2021, 2, 1}, {50, 100}, {350, 40}}};  // exactly four weeks
    for (const auto& [month, first, last] : rows) {
      const QList<calendarMonth::Day> days = daysOf(month);
      QCOMPARE(days.first().origin, first);
      QCOMPARE(days.last().origin, last);
      for (const calendarMonth::Day& day : days) {
        QCOMPARE(day.origin.x(), 50.0 * month.addDays(day.number - 1).dayOfWeek());
        QCOMPARE(day.box, QRectF(day.origin.x() - 6, day.origin.y() - 2, 30, 20));
      }
    }
  }

  static void stepping() {
    const QList<std::tuple<QDate, int, QDate>> rows{{{2024, 2, 29}, 0, {2024, 2, 1}},
                                                    {{2024, 1, 31}, 1, {2023, 12, 1}},
                                                    {{2023, 12, 31}, 2, {2024, 1, 1}},
                                                    {{2023, 3, 31}, 1, {2023, 2, 1}}};
    for (const auto& [day, step, first] : rows) {
      View view(day);
      view.checkPreNext = step;
      QCOMPARE(view.returnCurrentD(), first);
    }
  }

  static void clicks() {
    const QDate before = january.addMonths(-1);
    const QDate after = january.addMonths(1);
    const QList<std::tuple<QPoint, QDate>> rows{
        {{15, 140}, before},  {{8, 135}, before},    {{23, 145}, before},
        {{15, 150}, january}, {{15, 134}, january},  {{24, 140}, january},
        {{400, 145}, after},  {{416, 140}, january}, {{55, 105}, january}};
    for (const auto& [point, month] : rows) {
      View view(january);
      QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(point.x(), viewHeight - point.y()));
      QCOMPARE(view.currentDay, month);
      QCOMPARE(view.checkPreNext, 0);
    }
    View view(QDate(9999, 12, 1));  // the last month
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(410, viewHeight - 140));
    QTest::mouseClick(&view, Qt::RightButton, {}, QPoint(15, viewHeight - 140));
    QCOMPARE(view.currentDay, QDate(9999, 12, 1));
  }

  static void keysAndCursor() {
    View view(january);
    view.show();
    QVERIFY(view.hasMouseTracking());
    QTest::keyClick(&view, Qt::Key_Left);
    QCOMPARE(view.currentDay, january.addMonths(-1));
    QTest::keyClick(&view, Qt::Key_Right);
    QCOMPARE(view.currentDay, january);

    QTest::mouseMove(&view, QPoint(410, viewHeight - 140));
    QTRY_COMPARE(view.cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseMove(&view, QPoint(100, viewHeight - 140));
    QTRY_COMPARE(view.cursor().shape(), Qt::ArrowCursor);
  }

  static void runDays() {
    storeRuns({"2024-03-01 00:00:00", "2024-03-17 07:00:00", "2024-03-17 18:00:00",
               "2024-02-05 07:00:00", "2023-03-06 07:00:00"});
    View view(march.addDays(19));
    QCOMPARE(view.daysWith(isRed), (QList{1, 17}));
    // The view is told nothing about the store: the next draw finds what has changed.
    storeRuns({"2024-03-31 23:59:59"});
    const QList<int> red{1, 17, 31};
    QCOMPARE(view.daysWith(isRed), red);
    for (const int white : view.daysWith(isWhite)) {
      QVERIFY(!red.contains(white));
    }
    QCOMPARE(view.daysWith(isWhite).size(), 28);
    QCOMPARE(view.currentDay, march);
    QVERIFY(view.accessibleDescription().startsWith("2024-03"));
  }

  static void boxes() {
    View view(march);
    view.monthDayDetail = QStringList{"2024-03-14 ", "2024-03-15", "2023-03-16 "};
    QCOMPARE(view.daysWith(isBoxed), QList<int>{14});
    // 14 March stands in the third row: the box reaches from (194, 58) to (224, 78).
    const QImage image = view.grab().toImage();
    QCOMPARE(View::count(image, {195, 59, 5, 18}, isBoxed), 5 * 18);
    QCOMPARE(View::count(image, {219, 59, 4, 18}, isBoxed), 4 * 18);
    QCOMPARE(View::count(image, {226, 50, 10, 30}, isBoxed), 0);
    QCOMPARE(View::count(image, {194, 80, 30, 10}, isBoxed), 0);
  }

  static void header() {
    const QImage image = View(march).grab().toImage();
    QCOMPARE(image.pixelColor(0, 0), QColor(128, 128, 128));
    QCOMPARE(image.pixelColor(499, viewHeight - 1), QColor(128, 128, 128));
    // The marks point outward: the edge at their tip is narrower than the opposite one.
    const auto blackAt = [&](int x) { return View::count(image, {x, 135, 3, 10}, isBlack); };
    QVERIFY(blackAt(8) > 0 && blackAt(8) < blackAt(20) && blackAt(20) > 20);
    QVERIFY(blackAt(412) > 0 && blackAt(412) < blackAt(400) && blackAt(400) > 20);
    for (int column = 1; column <= 7; ++column) {
      QVERIFY(View::count(image, {50 * column, 120, 16, 20}, isWhite) > 10);
    }
    QVERIFY(View::count(image, {180, 135, 60, 15}, isWhite) > 50);
  }
};

QTEST_MAIN(CalendarTest)
#include "tst_calendar.moc"
