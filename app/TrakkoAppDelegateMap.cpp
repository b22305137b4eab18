// The map of the controller: its page, and the drawing of the current run.

#include "app/TrakkoAppDelegate.h"
#include "base/text.h"
#include "data/bundle.h"
#include "map/chinaShift.h"
#include "map/drawingScripts.h"
#include "map/framing.h"
#include "map/mapPages.h"
#include "web/mapView.h"

#include <QItemSelectionModel>
#include <QLoggingCategory>
#include <QTableView>

#include <utility>

Q_LOGGING_CATEGORY(lcMap, "trakko.map", QtInfoMsg)

void TrakkoAppDelegate::setWebView(MapView* view) {
  theWebView = view;
}

PageSettings TrakkoAppDelegate::pageSettings() const {
  return {imageFolderAddress(mainBundle()), context_.mapServices};
}

QString TrakkoAppDelegate::gethtmlStr() const {
  QString page = ::gethtmlStr(pageSettings());
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
  loader_.request(requestFor(currentNumber, isAvailable),
                  [this, chosen = choose(), ofNewData = getNewData == 1](LoadedTrack& track) {
                    if (chosen == selection_) {
                      takeTrack(track);
                      drawTrack(track.overlay.expression, track.failed);
                      if (track.failed) {
                        tellUnreadable(ofNewData);
                      }
                    }
                  });
}

TrackRequest TrakkoAppDelegate::requestFor(qint64 number, bool google) const {
  return {number, currentNumber, google, arrPointStr, newestLoad_};
}

void TrakkoAppDelegate::takeTrack(LoadedTrack& track) {
  pointDic = track.points;
  takePointRows(std::move(track.pointRows));
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

void TrakkoAppDelegate::drawTrack(const QString& expression, bool failed) {
  if (expression.isEmpty()) {
    if (!failed && runDic.contains(text::padded(currentNumber, 2))) {
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
  return trackNow(number, true);
}

QString TrakkoAppDelegate::getGDMapStr(qint64 number) {
  return trackNow(number, false);
}

QString TrakkoAppDelegate::trackNow(qint64 number, bool google) {
  LoadedTrack track = RunLoader::read(requestFor(number, google));
  takeTrack(track);
  return track.overlay.expression;
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
