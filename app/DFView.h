#pragma once

#include "app/outlinedText.h"

#include <QDate>
#include <QDateTime>
#include <QFileSystemWatcher>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <utility>

/// The calendar: one month, with the days on which a stored run started in red, and two marks that
/// step to the month before and after. It asks the store by itself, one question a day, whenever it
/// is drawn, and asks to be drawn when its window becomes active and when the store has changed; a
/// click on a day does nothing. Main thread.
///
/// Points given to mouseMoved() and mouseDown() have their origin in the view's lower-left corner
/// and y growing upward, like all of its geometry (calendarMonth).
class DFView : public QWidget {
  Q_OBJECT

 public:
  /// A date taken apart.
  struct Components {
    qint32 year = 0;
    qint32 month = 0;
    qint32 day = 0;
    qint32 week = 0;     ///< Week of the year after ISO 8601.
    qint32 weekday = 0;  ///< 1 = Sunday to 7 = Saturday.
  };

  /// Shows the current month.
  explicit DFView(QWidget* parent = nullptr);

  /// A day of the month shown; each draw sets it to the first of that month.
  QDate currentDay;
  /// What returnCurrentD() answers: 0 this month, 1 the month before, 2 the month after.
  qint32 checkPreNext = 0;
  /// Days with a box behind their number, each as "yyyy-MM-dd " with the blank at the end.
  QStringList monthDayDetail;

  /// Days of the month in the Gregorian calendar; any `month` besides 1 to 12 counts as February.
  static qint32 monthCount(qint32 year, qint32 month);
  static Components dateComponent(QDate date);
  /// The date of a text "yyyy-MM-dd"; invalid when it is none.
  static QDate dateFromString(const QString& text);
  /// The first day of the month that `checkPreNext` asks for, counted from `currentDay`. Invalid
  /// outside the years 1000 to 9999.
  QDate returnCurrentD() const;

  /// Shows the pointing hand over the two marks, the arrow elsewhere.
  void mouseMoved(QPointF point);
  /// Steps the month when `point` lies on a mark.
  void mouseDown(QPointF point);
  /// Draws the whole month; `dirtyRect` is not needed for that.
  void drawRect(const QRectF& dirtyRect);
  /// Makes the view receive mouse moves without a button pressed, and watch the store.
  void viewDidMoveToWindow();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  /// When the database was last written, and its size.
  using Stamp = std::pair<QDateTime, qint64>;

  static Stamp stamp();
  void redrawChanged();
  QPointF upward(QPointF position) const;
  void step(qint32 preNext);
  void drawHeader(QPainter& painter);
  QStringList drawDays(QPainter& painter, const Components& first);
  void drawFocus(QPainter& painter) const;

  OutlinedText texts_;
  QFileSystemWatcher watcher_;
  QTimer changed_;
  Stamp drawn_;  ///< Of the database that the view shows.
};
