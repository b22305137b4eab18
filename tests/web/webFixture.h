#pragma once

#include "base/messenger.h"
#include "map/mapPages.h"
#include "map/trackOverlay.h"
#include "web/webEngine.h"
#include "web/webMapView.h"

#include <QApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWebEnginePage>
#include <QtTest>

#include <memory>
#include <unistd.h>

/// Keeps the page's alerts.
struct AlertLog : Messenger {
  void message(const QString& text) override { messages.append(text); }
  QStringList messages;
};

/// A web server on this machine: fixed answers by path, 403 for everything else.
class LocalServer : public QTcpServer {
 public:
  LocalServer() {
    listen(QHostAddress::LocalHost);
    connect(this, &QTcpServer::newConnection, this, [this] {
      QTcpSocket* socket = nextPendingConnection();
      connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
      connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
        requests.append(socket->readAll());
        const QByteArray path = requests.last().split(' ').value(1).split('?').first();
        socket->write((files.contains(path) ? "HTTP/1.1 200 OK" : "HTTP/1.1 403 Forbidden") +
                      QByteArray("\r\nConnection: close\r\nAccess-Control-Allow-Origin: *") +
                      "\r\n\r\n" + files.value(path));
        socket->disconnectFromHost();
      });
    });
  }
  QString address() const { return "http://127.0.0.1:" + QString::number(serverPort()); }

  QHash<QByteArray, QByteArray> files;
  QByteArrayList requests;  ///< Heads as received.
};

/// A test with a map view and its surroundings: all services on one local server that serves
/// nothing unless the test says otherwise.
class MapTest : public QObject {
 public:
  /// Before the application exists: no display and no settings of the user's needed.
  static void initMain() {
    if (geteuid() == 0) {
      qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
      qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QStandardPaths::setTestModeEnabled(true);
    registerMapScheme();
    setUpWebEngine();
  }

 protected:
  /// A new view, for pages with this key and script host of Google's.
  void startAnew(const QString& googleKey = {}, const QString& googleHost = {}) {
    server.files.clear();
    server.requests.clear();
    alerts->messages.clear();
    imageFolder = "file://" TRAKKO_IMAGES "/";
    const QString host = server.address();
    services = {googleHost.isEmpty() ? host : googleHost,
                googleKey,
                host,
                host,
                host,
                "key",
                host,
                host + "/tiles/{z}/{x}/{y}.png",
                "http://home.example.org/"};
    view = std::make_unique<WebMapView>(alerts, services, QString());
    view->resize(640, 480);
    view->show();
    titles = std::make_unique<QSignalSpy>(view.get(), &WebMapView::titleReceived);
  }

  /// Loads a page and waits for the title.
  [[nodiscard]] bool load(const QString& html, const QString& title) const {
    titles->clear();
    view->loadPage(html, QUrl(imageFolder));
    return waitForTitle(title);
  }
  [[nodiscard]] bool loadGoogle(const QString& title = "Map Load OK") const {
    return load(gethtmlStr({imageFolder, services}), title);
  }
  [[nodiscard]] bool loadAMap(const QString& title = "OK") const {
    return load(getGDHtmlStr({imageFolder, services}), title);
  }

  static constexpr int patience = 30000;  // milliseconds; a busy machine starts an engine slowly

  // Waiting goes through real event loops throughout: QTest::qWaitFor() and QTRY_ macros sleep
  // between events, and the engine needs hundreds of them for one page.

  bool waitForTitle(const QString& title) const {
    while (!titles->contains(QVariantList{title}) && titles->wait(patience)) {
    }
    return titles->contains(QVariantList{title});
  }

  /// The value of a script expression, once all calls before have been carried out.
  QVariant value(const QString& expression) const {
    static int turn = 0;
    const QString reached = "turn " + QString::number(++turn);
    view->evaluate("document.title = '" + reached + "'");
    QVariant result;
    if (waitForTitle(reached)) {
      QTestEventLoop loop;
      view->page()->runJavaScript(expression, [&](const QVariant& v) {
        result = v;
        loop.exitLoop();
      });
      loop.enterLoopMSecs(patience);
    }
    return result;
  }

  /// Whether the script expression becomes true.
  bool becomes(const QString& expression) const {
    const QDeadlineTimer limit(patience);
    while (!value(expression).toBool() && !limit.hasExpired()) {
      QTestEventLoop::instance().enterLoopMSecs(10);
    }
    return !limit.hasExpired();
  }

  /// Draws as the controller does.
  void draw(const PointDictionary& points) const {
    const TrackOverlay track = buildGoogleOverlay(points, 1, {});
    if (track.expression.isEmpty()) {
      view->evaluate("SetMapNull();");
      return;
    }
    const auto number = [](double degrees) { return QString::number(degrees, 'f', 6); };
    view->evaluate("initMap();");
    view->callFunction("MapPolyline", {track.expression, track.breakPointStr == "1" ? "1" : "0",
                                       track.breakPointStr});
    view->callFunction("Setfitbounds", {number(track.bounds.minLat), number(track.bounds.maxLat),
                                        number(track.bounds.minLon), number(track.bounds.maxLon)});
    if (!track.arrPointStr.isNull()) {
      view->callFunction("midLineArrows", {track.arrPointStr});
    }
  }

  QString imageFolder;
  LocalServer server;
  MapSettings services;
  std::shared_ptr<AlertLog> alerts = std::make_shared<AlertLog>();
  std::unique_ptr<WebMapView> view;
  std::unique_ptr<QSignalSpy> titles;
};
