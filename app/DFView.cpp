#include "app/DFView.h"

#include "app/calendarMonth.h"
#include "base/text.h"
#include "data/bundle.h"
#include "data/dataControl.h"

#include <QFileInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using calendarMonth::Mark;

/// What a download stores comes run by run; the days are drawn a few times a second meanwhile.
constexpr int settlingTime = 200;  // milliseconds

constexpr OutlinedText::Style headingStyle{14, 0.5};
constexpr OutlinedText::Style dayStyle{12, 2};

QString monthTitle(const DFView::Components& date) {
  return QString::number(date.year) + u'-' + text::padded(date.month, 2);
}

QString tipOf(Mark mark) {
  switch (mark) {
    case Mark::previous:
      return u"前の月 (←)"_s;
    case Mark::next:
      return u"次の月 (→)"_s;
    case Mark::none:
      break;
  }
  return {};
}

}  // namespace

DFView::DFView(QWidget* parent) : QWidget(parent), currentDay(QDate::currentDate()) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::TabFocus);
  changed_.setSingleShot(true);
  changed_.setInterval(settlingTime);
  connect(&changed_, &QTimer::timeout, this, &DFView::redrawChanged);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, &changed_, [this] {
    if (!changed_.isActive()) {
      changed_.start();
    }
  });
  setAccessibleName(u"カレンダー"_s);
}

qint32 DFView::monthCount(qint32 year, qint32 month) {
  const bool isMonth = month >= 1 && month <= 12;
  // By remainders, for years without a calendar, too; those divisible by 400 have the same months.
  return QDate(2000 + year % 400, isMonth ? month : 2, 1).daysInMonth();
}

DFView::Components DFView::dateComponent(QDate date) {
  return {date.year(), date.month(), date.day(), date.weekNumber(), date.dayOfWeek() % 7 + 1};
}

QDate DFView::dateFromString(const QString& text) {
  return QDate::fromString(text, u"yyyy-MM-dd"_s);
}

QDate DFView::returnCurrentD() const {
  qint32 year = currentDay.year();
  qint32 month = currentDay.month();
  if (checkPreNext == 1 && --month < 1) {
    month = 12;
    --year;
  } else if (checkPreNext == 2 && ++month > 12) {
    month = 1;
    ++year;
  }
  return dateFromString(QString::number(year) + u'-' + text::padded(month, 2) + u"-01"_s);
}

void DFView::mouseMoved(QPointF point) {
  setCursor(calendarMonth::markAt(point) == Mark::none ? Qt::ArrowCursor : Qt::PointingHandCursor);
}

void DFView::mouseDown(QPointF point) {
  switch (calendarMonth::markAt(point)) {
    case Mark::previous:
      step(1);
      break;
    case Mark::next:
      step(2);
      break;
    case Mark::none:
      break;
  }
}

void DFView::drawRect(const QRectF& /*dirtyRect*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), QColor(128, 128, 128));
  painter.translate(0, height());
  painter.scale(1, -1);
  drawHeader(painter);

  currentDay = returnCurrentD();
  const Components first = dateComponent(currentDay);
  const QString title = monthTitle(first);
  texts_.draw(painter, title, calendarMonth::titleOrigin, dayStyle, Qt::white);
  drawn_ = stamp();  // before the questions: what is stored during them is drawn next time
  const QStringList runDays = drawDays(painter, first);
  drawFocus(painter);
  setAccessibleDescription(
      runDays.isEmpty() ? title : title + u" 記録のある日: "_s + runDays.join(u", "_s));
}

void DFView::viewDidMoveToWindow() {
  setMouseTracking(true);
  // Every change of the store makes and removes a journal beside it, and a restored file is renamed
  // into its place: watching the folder is enough, and does not touch the file.
  const QString folder = folderBeside(mainBundle());
  if (!folder.isEmpty() && !watcher_.directories().contains(folder)) {
    watcher_.addPath(folder);
  }
}

DFView::Stamp DFView::stamp() {
  const QFileInfo database(databasePath(mainBundle()));
  return {database.lastModified(), database.size()};
}

// The drawing may touch the folder itself, where the tables are missing; that is no change.
void DFView::redrawChanged() {
  if (stamp() != drawn_) {
    update();
  }
}

QSize DFView::sizeHint() const {
  return {calendarMonth::width, calendarMonth::height};
}

QSize DFView::minimumSizeHint() const {
  return sizeHint();
}

bool DFView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) {
    return QWidget::event(event);
  }
  const auto* help = static_cast<QHelpEvent*>(event);
  QToolTip::showText(help->globalPos(), tipOf(calendarMonth::markAt(upward(help->pos()))), this);
  return true;
}

void DFView::paintEvent(QPaintEvent* event) {
  drawRect(event->rect());
}

void DFView::mouseMoveEvent(QMouseEvent* event) {
  mouseMoved(upward(event->position()));
}

void DFView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    mouseDown(upward(event->position()));
  }
}

void DFView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      step(1);
      break;
    case Qt::Key_Right:
      step(2);
      break;
    default:
      QWidget::keyPressEvent(event);
  }
}

void DFView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  viewDidMoveToWindow();
}

void DFView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
    update();
  }
}

QPointF DFView::upward(QPointF position) const {
  return {position.x(), height() - position.y()};
}

void DFView::step(qint32 preNext) {
  checkPreNext = preNext;
  // Beyond the four-digit years there is no month to show, and the view stays where it is.
  if (const QDate month = returnCurrentD(); month.isValid()) {
    currentDay = month;
  }
  checkPreNext = 0;
  update();
}

void DFView::drawHeader(QPainter& painter) {
  static constexpr std::array weekdays{u'月', u'火', u'水', u'木', u'金', u'土', u'日'};
  for (size_t column = 0; column < weekdays.size(); ++column) {
    texts_.draw(painter, QString(weekdays[column]),
                calendarMonth::headingOrigin(static_cast<int>(column)), headingStyle, Qt::white);
  }
  painter.setPen(Qt::black);
  painter.setBrush(Qt::black);
  painter.drawPolygon(QPolygonF(calendarMonth::triangle(Mark::previous)));
  painter.drawPolygon(QPolygonF(calendarMonth::triangle(Mark::next)));
}

/// Draws the days and answers the numbers of those with a run.
QStringList DFView::drawDays(QPainter& painter, const Components& first) {
  QStringList runDays;
  dataControl store;
  const QString title = monthTitle(first);
  const qint32 count = monthCount(first.year, first.month);
  for (const calendarMonth::Day& day : calendarMonth::days(first.weekday, count)) {
    const QString number = text::padded(day.number, 2);
    const QString date = title + u'-' + number;
    if (monthDayDetail.contains(date + u' ')) {
      const QColor boxed(242, 170, 182);
      painter.setPen(boxed);
      painter.setBrush(boxed);
      painter.drawRect(day.box);
    }
    const bool hasRun = store.getRunDataTF(date) == 1;
    if (hasRun) {
      runDays.append(number);
    }
    texts_.draw(painter, number, day.origin, dayStyle, hasRun ? Qt::red : Qt::white);
  }
  return runDays;
}

/// A frame while the keyboard works on the view.
void DFView::drawFocus(QPainter& painter) const {
  if (hasFocus()) {
    painter.setPen(QPen(palette().highlight(), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
  }
}
