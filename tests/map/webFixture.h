#pragma once

#include "app/webMapView.h"
#include "device/dialogs.h"
#include "map/mapPages.h"
#include "map/trackOverlay.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTestEventLoop>
#include <QWebEnginePage>
#include <memory>
#include <unistd.h>

/// Keeps the page's alerts; answers nothing.
struct AlertLog : Dialogs {
  void message(const QString& text) override { messages.append(text); }
  bool confirmErase(const QString& /*text*/) override { return false; }
  QString fileToSave(const QString&, const QString&, const QString&) override { return {}; }
  QString fileToOpen(const QString&, const QString&) override { return {}; }
  QStringList messages;
};

/// A web server on this machine: fixed answers by path, 403 for everything else.
class LocalServer : public QObject {
 public:
  LocalServer() {
    listener.listen(QHostAddress::LocalHost);
    connect(&listener, &QTcpServer::newConnection, this, [this] {
      QTcpSocket* socket = listener.nextPendingConnection();
      connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
      connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
  }

  QString address() const { return "http://127.0.0.1:" + QString::number(listener.serverPort()); }

  QHash<QByteArray, QByteArray> files;
  QList<QByteArray> requests;  ///< Heads as received.
  bool silent = false;         ///< Takes requests and never answers.

 private:
  void answer(QTcpSocket* socket) {
    const QByteArray head = socket->readAll();
    requests.append(head);
    if (silent) {
      return;
    }
    const QByteArray path = head.split(' ').value(1).split('?').first();
    const auto file = files.constFind(path);
    const bool known = file != files.constEnd();
    socket->write("HTTP/1.1 " + QByteArray(known ? "200 OK" : "403 Forbidden") +
                  "\r\nConnection: close\r\nAccess-Control-Allow-Origin: *\r\n\r\n" +
                  (known ? *file : QByteArray()));
    socket->disconnectFromHost();
  }

  QTcpServer listener;
};

/// A map view with its surroundings; services that nobody serves unless a test says otherwise.
struct MapFixture {
  MapFixture() {
    services = {.googleHost = server.address(),
                .googleKey = {},
                .googleImageHost = server.address(),
                .googleStaticHost = server.address(),
                .amapHost = server.address(),
                .amapKey = "key",
                .amapSiteHost = server.address(),
                .tileAddress = server.address() + "/tiles/{z}/{x}/{y}.png",
                .referer = "http://home.example.org/"};
  }

  PageSettings pageSettings() const { return {imageFolder, services}; }

  /// Loads a page into the view, which is made for the first one; waits for the title.
  [[nodiscard]] bool load(const QString& html, const QString& title) {
    if (!view) {
      view = std::make_unique<WebMapView>(alerts, services, QString());
      view->resize(640, 480);
      view->show();
      titles = std::make_unique<QSignalSpy>(view.get(), &WebMapView::titleReceived);
    }
    titles->clear();
    view->loadPage(html, QUrl(imageFolder));
    return waitForTitle(title);
  }
  [[nodiscard]] bool loadGoogle() { return load(gethtmlStr(pageSettings()), "Map Load OK"); }

  // Waiting goes through real event loops throughout: QTest::qWaitFor() and QTRY_ macros sleep
  // between events, and the engine needs hundreds of them for one page.

  bool waitForTitle(const QString& title) const {
    while (!titles->contains(QVariantList{title})) {
      if (!titles->wait(10000)) {
        return false;
      }
    }
    return true;
  }

  /// The value of a script expression, once all calls before have been carried out.
  QVariant value(const QString& expression) const {
    QTestEventLoop loop;
    QVariant result;
    view->evaluate("0", [&] {
      view->page()->runJavaScript(expression, [&](const QVariant& v) {
        result = v;
        loop.exitLoop();
      });
    });
    loop.enterLoopMSecs(10000);
    return result;
  }

  /// Whether the script expression becomes true.
  bool becomes(const QString& expression) const {
    QElapsedTimer timer;
    timer.start();
    while (!value(expression).toBool()) {
      if (timer.hasExpired(10000)) {
        return false;
      }
      QTestEventLoop::instance().enterLoopMSecs(10);
    }
    return true;
  }

  /// Draws as the controller does.
  void draw(const TrackOverlay& track) const {
    if (track.expression.isEmpty()) {
      view->evaluate("SetMapNull();");
      return;
    }
    const auto number = [](double value) { return QString::number(value, 'f', 6); };
    view->evaluate("initMap();");
    view->callFunction("MapPolyline", {track.expression, track.breakPointStr == "1" ? "1" : "0",
                                       track.breakPointStr});
    view->callFunction("Setfitbounds", {number(track.bounds.minLat), number(track.bounds.maxLat),
                                        number(track.bounds.minLon), number(track.bounds.maxLon)});
    if (!track.arrPointStr.isNull()) {
      view->callFunction("midLineArrows", {track.arrPointStr});
    }
  }
  void draw(const PointDictionary& points) const { draw(buildGoogleOverlay(points, 1, QString())); }

  QString imageFolder = "file://" TRAKKO_IMAGES "/";
  LocalServer server;
  MapSettings services;
  std::shared_ptr<AlertLog> alerts = std::make_shared<AlertLog>();
  std::unique_ptr<WebMapView> view;
  std::unique_ptr<QSignalSpy> titles;
};

/// main() of a test in the real engine: no display and no settings of the user's needed.
template <typename Test>
int runWebTest(int argc, char* argv[]) {
  if (geteuid() == 0) {
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
  }
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QStandardPaths::setTestModeEnabled(true);
  registerMapScheme();
  QApplication application(argc, argv);
  Test test;
  return QTest::qExec(&test, argc, argv);
}
