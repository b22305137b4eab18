// The map of the controller: its page, and the drawing of the current run.

#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "base/text.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "map/chinaShift.h"
#include "map/drawingScripts.h"
#include "map/framing.h"
#include "map/mapPages.h"
#include "web/mapView.h"

#include <QItemSelectionModel>
#include <QLoggingCategory>
#include <QTableView>

Q_LOGGING_CATEGORY(lcMap, "trakko.map", QtInfoMsg)

/// A run as read from the store, with what the map shows of it.
struct TrakkoAppDelegate::LoadedTrack {
  RunDictionary runs;
  LapDictionary laps;
  PointDictionary points;
  TrackOverlay overlay;
};

void TrakkoAppDelegate::setWebView(MapView* view) {
  theWebView = view;
}

PageSettings TrakkoAppDelegate::pageSettings() const {
  return {imageFolderAddress(mainBundle()), context_.mapServices};
}

QString TrakkoAppDelegate::gethtmlStr() const {
  const QString page = ::gethtmlStr(pageSettings());
  qCInfo(lcMap).noquote() << page;
  return page;
}

QString TrakkoAppDelegate::getGDHtmlStr() const {
  return ::getGDHtmlStr(pageSettings());
}

void TrakkoAppDelegate::webLoadStr() {
  theWebView->loadPage(isAvailable ? gethtmlStr() : getGDHtmlStr(),
                       QUrl(pageSettings().imageFolder));
}

void TrakkoAppDelegate::webLoadComplete() {}

void TrakkoAppDelegate::didReceiveTitle(const QString& title) {
  qCInfo(lcMap).noquote() << title;
  pageAnswers_ = pageAnswers_ || title.startsWith(QStringLiteral("Map Load"));
  if (title != QStringLiteral("Map Load OK")) {
    return;
  }
  mapLoaded_ = true;
  if (!checkInitMap && currentNumber > 0) {
    displayMap();
  }
}

void TrakkoAppDelegate::pageReset() {
  pageAnswers_ = false;
  mapLoaded_ = false;
  checkInitMap = false;
}

void TrakkoAppDelegate::mapGaveUp() {
  showStatus(QStringLiteral("地図を表示できません。プログラムを再起動して下さい。"),
             Verdict::failure);
}

void TrakkoAppDelegate::displayMap() {
  const QModelIndexList selected = tView->selectionModel()->selectedRows();
  if (currentNumber == 0 || selected.isEmpty()) {
    return;
  }
  const Selection chosen = choose();
  detachThread(
      "track", [this, chosen, number = currentNumber, google = isAvailable, arrow = arrPointStr] {
        performOnMainThread([this, chosen, track = loadTrack(number, number, google, arrow)] {
          if (chosen == selection_) {
            takeTrack(*track);
            drawTrack(track->overlay.expression);
          }
        });
      });
}

// Reading and building happens away from the main thread; the tables and the page get the result as
// a whole.
std::shared_ptr<TrakkoAppDelegate::LoadedTrack> TrakkoAppDelegate::loadTrack(qint64 number,
                                                                             qint64 lapsNumber,
                                                                             bool google,
                                                                             const QString& arrow) {
  auto track = std::make_shared<LoadedTrack>();
  track->points = dataControl().getTrackData(static_cast<qint32>(number));
  track->runs = dataControl().getRunData(QStringLiteral("All"), QStringLiteral(""));
  if (!google) {
    qCInfo(lcMap, "%lld", static_cast<long long>(track->runs.size()));
  }
  track->laps = dataControl().getLapData(static_cast<qint32>(lapsNumber));
  track->overlay = google ? buildGoogleOverlay(track->points, number, arrow)
                          : buildGDOverlay(track->points, number, arrow);
  return track;
}

void TrakkoAppDelegate::takeTrack(const LoadedTrack& track) {
  pointDic = track.points;
  setPointView();
  runDic = track.runs;
  lapDic = track.laps;
  setLapView();
  breakPointStr = track.overlay.breakPointStr;
  arrPointStr = track.overlay.arrPointStr;
  maxLat = track.overlay.bounds.maxLat;
  minLat = track.overlay.bounds.minLat;
  maxLon = track.overlay.bounds.maxLon;
  minLon = track.overlay.bounds.minLon;
}

void TrakkoAppDelegate::drawTrack(const QString& expression) {
  if (expression.isEmpty()) {
    if (runDic.contains(text::padded(currentNumber, 2))) {
      showStatus(QStringLiteral("このランには位置データがありません。"));
      saysNoPositions_ = true;
    }
    theWebView->evaluate(QStringLiteral("SetMapNull();"));
    return;
  }
  if (!isAvailable) {
    setGDMapPoly(expression, breakPointStr);  // the script is not evaluated on this page
    return;
  }
  if (!pageAnswers_) {
    return;  // the page draws the run when it reports its map
  }
  if (saysNoPositions_) {
    showStatus({});
  }
  checkInitMap = true;
  theWebView->evaluate(QStringLiteral("initMap();"));
  const QString unbroken = QStringLiteral("1");
  theWebView->callFunction(
      QStringLiteral("MapPolyline"),
      {expression, breakPointStr == unbroken ? unbroken : QStringLiteral("0"), breakPointStr});
  theWebView->callFunction(QStringLiteral("Setfitbounds"),
                           {text::fixed(minLat, 6), text::fixed(maxLat, 6), text::fixed(minLon, 6),
                            text::fixed(maxLon, 6)});
  if (!arrPointStr.isNull()) {
    theWebView->callFunction(QStringLiteral("midLineArrows"), {arrPointStr});
  }
}

QString TrakkoAppDelegate::getGoogleMapStr(qint64 number) {
  const auto track = loadTrack(number, currentNumber, true, arrPointStr);
  takeTrack(*track);
  return track->overlay.expression;
}

QString TrakkoAppDelegate::getGDMapStr(qint64 number) {
  const auto track = loadTrack(number, currentNumber, false, arrPointStr);
  takeTrack(*track);
  return track->overlay.expression;
}

QString TrakkoAppDelegate::setGDMapPoly(const QString& polyStr, const QString& breakPoints) const {
  return ::setGDMapPoly(polyStr, breakPoints);
}

QString TrakkoAppDelegate::setMapPoly(const QString& polyStr, const QString& breakPoints) const {
  return ::setMapPoly(polyStr, breakPoints);
}

QString TrakkoAppDelegate::getZoom(double theMaxLat, double theMinLat, double theMaxLon,
                                   double theMinLon) const {
  return ::getZoom({maxLat, minLat, maxLon, minLon}, theMaxLat, theMinLat, theMaxLon, theMinLon);
}

double TrakkoAppDelegate::sumDist(double theLat1, double theLat2, double theLon1,
                                  double theLon2) const {
  return ::sumDist(theLat1, theLat2, theLon1, theLon2);
}

double TrakkoAppDelegate::ConvertGDLat(double lat, double y) const {
  return ::ConvertGDLat(lat, y);
}

double TrakkoAppDelegate::ConvertGDLon(double lat, double y) const {
  return ::ConvertGDLon(lat, y);
}

double TrakkoAppDelegate::transFormLat(double x, double y) const {
  return ::transFormLat(x, y);
}

double TrakkoAppDelegate::transFormLon(double x, double y) const {
  return ::transFormLon(x, y);
}
