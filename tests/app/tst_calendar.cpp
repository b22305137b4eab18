#include "app/DFView.h"
#include "app/calendarMonth.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "tests/columns.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

namespace {

constexpr int viewHeight = 200;  // higher than the drawing, so that its lower-left anchor shows
const QColor ground(128, 128, 128);
const QColor boxed(242, 170, 182);
const QDate january(2024, 1, 1);
const QDate march(2024, 3, 1);

QList<calendarMonth::Day> daysOf(QDate month) {
  const DFView::Components first = DFView::dateComponent(month);
  return calendarMonth::days(first.weekday, DFView::monthCount(first.year, first.month));
}

/// What lies in 16 by 16 points from `origin` on, which counts from below like the view.
QImage cut(const QPixmap& pixmap, QPointF origin) {
  return pixmap.toImage()
      .convertToFormat(QImage::Format_RGB32)
      .copy(qRound(origin.x()), viewHeight - qRound(origin.y()) - 16, 16, 16);
}

/// The same piece of a view that shows nothing but the text.
QImage drawn(const QString& text, QPointF origin, const OutlinedText::Style& style, QColor colour) {
  QPixmap pixmap(500, viewHeight);
  pixmap.fill(ground);
  QPainter painter(&pixmap);
  painter.translate(0, viewHeight);
  painter.scale(1, -1);
  OutlinedText().draw(painter, text, origin, style, colour);
  return cut(pixmap, origin);
}

struct View : DFView {
  explicit View(QDate day) {
    resize(500, viewHeight);
    currentDay = day;
  }
};

}  // namespace

class tst_calendar : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder_;

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
    setMainBundle({folder_.filePath("Trakko.app"), "Trakko"});
    QFile::remove(folder_.filePath("gpsData.db3"));
  }

  static void monthsThatAreNone() {
    QCOMPARE(DFView::monthCount(2024, 0), 29);
    QCOMPARE(DFView::monthCount(2023, 13), 28);
  }

  static void layout_data() {
    const auto row = columns<QDate, QPointF, QPointF>("month", "first", "last");
    row("from Monday", QDate(2024, 4, 1), QPointF(50, 100), QPointF(100, 20));
    row("from Sunday", QDate(2023, 10, 1), QPointF(350, 100), QPointF(100, 0));
    row("four weeks", QDate(2021, 2, 1), QPointF(50, 100), QPointF(350, 40));
  }

  static void layout() {
    QFETCH(QDate, month);
    const QList<calendarMonth::Day> days = daysOf(month);
    QTEST(days.first().origin, "first");
    QTEST(days.last().origin, "last");
    for (const calendarMonth::Day& day : days) {
      QCOMPARE(day.origin.x(), 50.0 * month.addDays(day.number - 1).dayOfWeek());
      QCOMPARE(day.box, QRectF(day.origin.x() - 6, day.origin.y() - 2, 30, 20));
    }
  }

  static void steps_data() {
    const auto row = columns<QDate, QPoint, QDate>("day", "point", "month");
    const QDate before = january.addMonths(-1);
    const QDate after = january.addMonths(1);
    row("back, lowest corner", january, QPoint(8, 135), before);
    row("back, highest corner", january, QPoint(23, 145), before);
    row("above the mark", january, QPoint(15, 150), january);
    row("below it", january, QPoint(15, 134), january);
    row("beside it", january, QPoint(24, 140), january);
    row("on", january, QPoint(400, 145), after);
    row("right of it", january, QPoint(416, 140), january);
    row("a day", january, QPoint(55, 105), january);
    row("over the year", QDate(2023, 12, 31), QPoint(415, 135), january);
    row("from a 31st", QDate(2023, 3, 31), QPoint(15, 140), QDate(2023, 2, 1));
    row("the last", QDate(9999, 12, 1), QPoint(410, 140), QDate(9999, 12, 1));
  }

  static void steps() {
    QFETCH(QDate, day);
    QFETCH(QPoint, point);
    View view(day);
    QTest::mouseClick(&view, Qt::RightButton, {}, QPoint(point.x(), viewHeight - point.y()));
    QCOMPARE(view.currentDay, day);
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(point.x(), viewHeight - point.y()));
    QTEST(view.currentDay, "month");
    QCOMPARE(view.checkPreNext, 0);
  }

  static void keysAndCursor() {
    View view(january);
    view.show();
    QTest::keyClick(&view, Qt::Key_Left);
    QCOMPARE(view.currentDay, january.addMonths(-1));
    QTest::keyClick(&view, Qt::Key_Right);
    QCOMPARE(view.currentDay, january);
    QTest::mouseMove(&view, QPoint(410, viewHeight - 140));
    QTRY_COMPARE(view.cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseMove(&view, QPoint(100, viewHeight - 140));
    QTRY_COMPARE(view.cursor().shape(), Qt::ArrowCursor);
  }

  static void shownMonth() {
    storeRuns({"2024-03-01 00:00:00", "2024-03-17 07:00:00", "2024-03-17 18:00:00",
               "2024-03-31 23:59:59", "2024-02-05 07:00:00", "2023-03-06 07:00:00"});
    View view(march.addDays(19));
    view.monthDayDetail = QStringList{"2024-03-14 ", "2024-03-15", "2023-03-16 "};
    const QPixmap pixmap = view.grab();
    QCOMPARE(view.currentDay, march);
    const OutlinedText::Style heading{14, 0.5};
    for (int column = 0; column < 7; ++column) {
      const QPointF origin(50 + 50 * column, 120);
      QCOMPARE(cut(pixmap, origin),
               drawn(QString("月火水木金土日").at(column), origin, heading, Qt::white));
    }
    for (const calendarMonth::Day& day : daysOf(march)) {
      const bool hasRun = QList{1, 17, 31}.contains(day.number);
      const QString number = QString("%1").arg(day.number, 2, 10, QChar(u'0'));
      if (day.number != 14) {
        QCOMPARE(cut(pixmap, day.origin),
                 drawn(number, day.origin, {12, 2}, hasRun ? Qt::red : Qt::white));
      }
    }
    const auto at = [image = pixmap.toImage()](int x, int y) {
      return image.pixelColor(x, viewHeight - 1 - y);
    };
    // 14 March stands in the third row: the box reaches from (194, 58) to (224, 78).
    QCOMPARE(at(196, 76), boxed);
    QCOMPARE(at(222, 60), boxed);
    QCOMPARE(at(230, 70), ground);
    // The marks point outward.
    QCOMPARE(at(21, 136), QColor(Qt::black));
    QCOMPARE(at(9, 136), ground);
    QCOMPARE(at(402, 143), QColor(Qt::black));
    QCOMPARE(at(414, 143), ground);
  }

  void redrawsItself() {
    storeRuns({"2024-03-02 07:00:00"});
    View view(march);
    view.show();
    QTRY_COMPARE(view.accessibleDescription(), "2024-03 記録のある日: 02");
    storeRuns({"2024-03-05 07:00:00"});
    QTRY_COMPARE(view.accessibleDescription(), "2024-03 記録のある日: 02, 05");
    QFile::remove(folder_.filePath("gpsData.db3"));
    QTRY_COMPARE(view.accessibleDescription(), "2024-03");
  }
};

QTEST_MAIN(tst_calendar)
#include "tst_calendar.moc"
