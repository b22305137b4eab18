#include "web/profileView.h"

#include "base/resource.h"
#include "web/profileDrawing.h"

#include <QEvent>
#include <QFontInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPalette>
#include <QWebEnginePage>
#include <QWebEngineSettings>

#include <algorithm>
#include <chrono>

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto pauseOfResizing = 100ms;
constexpr int leastColumns = 100;
constexpr int columnWidth = 2;  // px; with one, a long run takes twice the time to draw

/// The page brings everything along.
class NothingToLoad : public RequestRules {
 public:
  RequestDecision decide(const QUrl& url) const override {
    const bool isItself = url.scheme() == u"data";
    return {isItself ? RequestDecision::Kind::Allow : RequestDecision::Kind::Block, {}};
  }
};

QString pageText() {
  QString page = QString::fromUtf8(resource(u":/web/profile.html"_s));
  const std::pair<QString, QString> parts[] = {
      {u"@DYGRAPHS_STYLE@"_s, u"dygraph.min.css"_s},
      {u"@STYLE@"_s, u"profile.css"_s},
      {u"@DYGRAPHS@"_s, u"dygraph.min.js"_s},
      {u"@SCRIPT@"_s, u"profile.js"_s},
  };
  for (const auto& [mark, file] : parts) {
    page.replace(mark, QString::fromUtf8(resource(u":/web/"_s + file)));
  }
  return page;
}

}  // namespace

ProfileView::ProfileView(std::shared_ptr<QWebEngineProfile> engine,
                         std::shared_ptr<Messenger> messenger)
    : WebPageHost(std::move(engine), std::move(messenger), std::make_shared<NothingToLoad>()),
      run_(std::make_shared<RunProfile>()) {
  setAccessibleName(u"プロフィール"_s);
  resized_.setSingleShot(true);
  connect(&resized_, &QTimer::timeout, this, &ProfileView::sendRun);
  connect(this, &WebPageHost::titleReceived, this, &ProfileView::take);
  connect(this, &WebPageHost::pageReset, this, &ProfileView::startPage);
  loadPage(pageText(), QUrl());
  startPage();
}

// Also after the page was lost: it is told everything anew.
void ProfileView::startPage() {
  sendLook();
  showCurves(curves_);
  sendRun();
  sendStretch();
  sendCursor();
}

void ProfileView::call(const QString& function, const QJsonValue& argument) {
  // A document holds an array or an object only; a single value is taken out of its array.
  const QByteArray text = QJsonDocument(QJsonArray{argument}).toJson(QJsonDocument::Compact);
  callFunction(function, {QString::fromUtf8(text.sliced(1, text.size() - 2))});
}

void ProfileView::showRun(std::shared_ptr<const RunProfile> run) {
  const bool isShown = run->points == run_->points;
  run_ = std::move(run);
  stretch_ = {};
  sendStretch();
  if (isShown) {
    showWindow(window_.first, window_.second);
  } else {
    cursor_ = lastCursor_ = -1;
    sendCursor();
    zoomOut();
  }
  Q_EMIT pointed(cursor_);
}

void ProfileView::showCurves(Curves curves) {
  curves_ = curves;
  call(u"showCurves"_s, QJsonObject{{u"pace"_s, curves.pace},
                                    {u"heart"_s, curves.heartRate},
                                    {u"altitude"_s, curves.altitude}});
}

void ProfileView::showAxis(ProfileAxis axis) {
  const bool isWhole = window_ == whole();
  const int first = nearestPoint(*run_, axis_, window_.first);
  const int last = nearestPoint(*run_, axis_, window_.second);
  axis_ = axis;
  if (isWhole || first < 0) {
    zoomOut();
  } else {
    showWindow(placeOf(point(first), axis), placeOf(point(last), axis));
  }
  sendStretch();
  sendCursor();
}

void ProfileView::zoomOut() {
  const auto [from, to] = whole();
  showWindow(from, to);
}

std::pair<double, double> ProfileView::whole() const {
  return run_->points.empty()
             ? std::pair(0.0, 0.0)
             : std::pair(placeOf(run_->points.front(), axis_), placeOf(run_->points.back(), axis_));
}

void ProfileView::showWindow(double from, double to) {
  const auto all = whole();
  window_ = {std::clamp(from, all.first, all.second), std::clamp(to, all.first, all.second)};
  if (!(window_.first < window_.second)) {
    window_ = all;
  }
  sendRun();
  Q_EMIT zoomed(window_ != all);
}

void ProfileView::pointTo(int row) {
  putCursor(row);
  if (row < 0) {
    return;
  }
  const double place = placeOf(point(row), axis_);
  const double half = (window_.second - window_.first) / 2;
  if (place < window_.first || place > window_.second) {
    const auto [from, to] = whole();
    const double middle = std::clamp(place, from + half, to - half);
    showWindow(middle - half, middle + half);
  }
}

void ProfileView::putCursor(int row) {
  if (row >= 0) {
    lastCursor_ = row;
  }
  if (row != cursor_) {
    cursor_ = row;
    sendCursor();
  }
}

void ProfileView::step(int by) {
  const int count = static_cast<int>(run_->points.size());
  if (count > 0) {
    pointTo(lastCursor_ < 0 ? 0 : std::clamp(lastCursor_ + by, 0, count - 1));
    Q_EMIT pointed(cursor_);
  }
}

void ProfileView::markStretch(int first, int end) {
  stretch_ = {first, end};
  sendStretch();
}

// The page's words stand behind a number that makes each saying a new one.
void ProfileView::take(const QString& title) {
  const QStringList words = title.split(u' ');
  const QString what = words.value(1);
  const double number = words.value(2).toDouble();
  if (what == u"point" || what == u"leave") {
    const int row = what == u"leave" ? -1 : nearestPoint(*run_, axis_, number);
    if (row != cursor_) {
      putCursor(row);
      Q_EMIT pointed(row);
    }
  } else if (what == u"step") {
    step(number < 0 ? -1 : 1);
  } else if (what == u"zoom") {
    showWindow(number, words.value(3).toDouble());
  } else if (what == u"all") {
    zoomOut();
  }
}

const ProfilePoint& ProfileView::point(int row) const {
  return run_->points[static_cast<std::size_t>(row)];
}

void ProfileView::sendRun() {
  if (run_->points.empty()) {
    call(u"drawProfile"_s, QJsonValue(QJsonValue::Null));
    return;
  }
  const int columns = std::max(leastColumns, width() / columnWidth);
  call(u"drawProfile"_s, profileDrawing(*run_, axis_, window_.first, window_.second, columns));
}

void ProfileView::sendCursor() {
  call(u"showCursor"_s, cursor_ < 0 ? QJsonValue(QJsonValue::Null)
                                    : QJsonValue(profileCursor(point(cursor_), axis_)));
}

void ProfileView::sendStretch() {
  const auto [first, end] = stretch_;
  const int count = static_cast<int>(run_->points.size());
  call(u"markStretch"_s,
       first < end && end <= count
           ? QJsonValue(QJsonArray{placeOf(point(first), axis_),
                                   placeOf(point(std::min(end, count - 1)), axis_)})
           : QJsonValue(QJsonValue::Null));
}

ProfileView::Colours ProfileView::colours() const {
  constexpr int middle = 128;
  return palette().color(QPalette::Base).lightness() < middle
             ? Colours{0x64b5f6U, 0xef7b78U, 0x6f8267U}
             : Colours{0x1565c0U, 0xc62828U, 0xa9b8a0U};
}

void ProfileView::sendLook() {
  const QColor base = palette().color(QPalette::Base);
  const QColor text = palette().color(QPalette::Text);
  const auto mixed = [&](double share) {
    const auto part = [share](int from, int to) {
      return static_cast<int>(from + (to - from) * share);
    };
    return QColor(part(base.red(), text.red()), part(base.green(), text.green()),
                  part(base.blue(), text.blue()));
  };
  const Colours curves = colours();
  page()->setBackgroundColor(base);
  page()->settings()->setFontFamily(QWebEngineSettings::StandardFont, font().family());
  call(u"setLook"_s, QJsonObject{{u"size"_s, u"%1px"_s.arg(QFontInfo(font()).pixelSize())},
                                 {u"base"_s, base.name()},
                                 {u"text"_s, text.name()},
                                 {u"quiet"_s, mixed(0.6).name()},
                                 {u"grid"_s, mixed(0.12).name()},
                                 {u"lap"_s, mixed(0.3).name()},
                                 {u"pause"_s, mixed(0.06).name()},
                                 {u"pace"_s, curves.pace.name()},
                                 {u"heart"_s, curves.heartRate.name()},
                                 {u"altitude"_s, curves.altitude.name()}});
}

void ProfileView::changeEvent(QEvent* event) {
  WebPageHost::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
    sendLook();
    Q_EMIT lookChanged();
  }
}

void ProfileView::resizeEvent(QResizeEvent* event) {
  WebPageHost::resizeEvent(event);
  resized_.start(pauseOfResizing);
}
