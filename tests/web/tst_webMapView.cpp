#include "tests/map/trackOf.h"
#include "tests/web/webFixture.h"

#include <QDesktopServices>

#include <csignal>

using namespace Qt::StringLiterals;

/// The web view by itself: calls, order, what the page may and may not do, and how it comes back.
class WebMapViewTest : public MapTest {
  Q_OBJECT

 public Q_SLOTS:
  void openOutside(const QUrl& url) { opened.append(url); }

 private Q_SLOTS:
  void init() {
    startAnew();
    opened.clear();
    for (const char* scheme : {"https", "http", "file"}) {
      QDesktopServices::setUrlHandler(scheme, this, "openOutside");
    }
  }

  void textsArriveAsTheyAre() {
    QVERIFY(loadBody({}));
    const QStringList texts{"a'b\"c`d\\e${f}", u"a\nb\r\nc\u2028d\u2029e\tf"_s,
                            "</script><!-- <script>", u"地図 🏃 \u0000x"_s, ""};
    view->callFunction("take", texts);
    QCOMPARE(value("taken").toStringList(), texts);
  }

  void callsKeepTheirOrder() {
    QVERIFY(loadBody({}));
    QStringList done;
    for (int i = 0; i < 5; ++i) {
      const QString number = QString::number(i);
      view->callFunction("take", {number}, [&done, number] { done.append(number); });
      // A call that fails is done as well.
      view->evaluate("nonsense" + number + "();", [&, number] {
        done.append("x" + number);
        view->callFunction("take", {"nested" + number});
      });
    }
    QCOMPARE(value("taken.join()"), "0,1,2,3,4");
    QCOMPARE(done.join(','), "0,x0,1,x1,2,x2,3,x3,4,x4");
    QVERIFY(becomes("taken.length === 10"));
  }

  void callsWaitForThePage() {
    bool lost = false;
    view->evaluate("document.title = 'of no page'", [&] { lost = true; });
    view->loadPage("<title>here</title><script>var seen = 'page';</script>", QUrl());
    view->evaluate("document.title = seen + (document.readyState !== 'loading')");
    QVERIFY(waitForTitle("pagetrue"));
    QVERIFY(!lost);
    QVERIFY(!titles->contains(QVariantList{"of no page"}));
  }

  void longPage() {
    const QString filling(3'000'000, 'x');
    QVERIFY(loadBody("<img src='2.png'><p id='long'>" + filling + "</p>"));
    QCOMPARE(value("document.getElementById('long').textContent.length"), filling.size());
    QVERIFY(becomes("document.images[0].naturalWidth === 12"));
  }

  void alertsDoNotHoldThePage() {
    QVERIFY(loadBody({}));
    view->evaluate("alert('<b>one</b>'); take(confirm('?'), prompt('?')); alert('two');");
    QCOMPARE(value("JSON.stringify(taken)"), "[false,null]");
    QCOMPARE(alerts->messages, (QStringList{"<b>one</b>", "two"}));
  }

  void nothingElseIsLoaded() {
    LocalServer stranger;
    stranger.files["/x.js"] = "take('script')";
    const auto with = [&](QString text) { return text.replace("HOST", stranger.address()); };
    QVERIFY(
        loadBody(with("<form action='trakko-map:/script'></form><img src='2.png'><img "
                      "src='file:///usr/share/pixmaps/debian-logo.png'>"
                      "<img src='../bundledMap.js'><iframe src='HOST/frame'></iframe>"
                      "<script src='HOST/x.js'></script>")));
    view->evaluate(with(
        "for (const address of ['HOST/f', 'file:///etc/passwd']) {"
        "fetch(address).then(() => take('fetched'), () => take('blocked')); }"
        "location.href = 'HOST/gone'; document.forms[0].submit(); window.open('HOST/window');"));
    QVERIFY(becomes("taken.length === 2 && document.images[0].naturalWidth === 12"));
    QCOMPARE(value("taken.join()"), "blocked,blocked");
    QVERIFY(stranger.requests.isEmpty());
    QCOMPARE(value("document.images[1].naturalWidth + document.images[2].naturalWidth"), 0);
  }

  void linksOpenOutside() {
    QVERIFY(
        loadBody("<a href='https://example.org/a'>x</a>"
                 "<a href='https://example.org/b' target='_blank'>x</a>"
                 "<a href='file:///etc/passwd'>x</a>"
                 "<a href='file:///etc/passwd' target='_blank'>x</a>"));
    for (int i = 0; i < 4; ++i) {
      view->evaluate(QString("document.links[%1].click();").arg(i));
      QTestEventLoop::instance().enterLoopMSecs(150);
    }
    QCOMPARE(opened, (QList<QUrl>{QUrl("https://example.org/a"), QUrl("https://example.org/b")}));
    QCOMPARE(value("typeof take"), "function");
  }

  // A service that fails is named, and none holds the page.
  void servicesThatFail() {
    const QString named = "document.body.textContent.includes('地図サービスに接続できません')";
    startAnew("key");
    QVERIFY(loadGoogle("Simple Map") && becomes(named));  // forbidden
    QVERIFY(loadAMap("ZEPLA Map") && becomes(named));
    startAnew("key", "http://127.0.0.1:1");  // nobody there
    QVERIFY(loadGoogle("Simple Map") && becomes(named));
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    startAnew("key", "http://127.0.0.1:" + QString::number(silent.serverPort()));
    QVERIFY(loadGoogle("Simple Map"));
    view->evaluate("initMap();");
    view->evaluate("document.title = 'alive'");
    QVERIFY(waitForTitle("alive"));
    QCOMPARE(alerts->messages, QStringList{"google is not defined"});
  }

  void comesBackAfterItsProcessDied() {
    QVERIFY(loadGoogle());
    const QSignalSpy resets(view.get(), &WebMapView::pageReset);
    bool done = false;
    titles->clear();
    kill(static_cast<pid_t>(view->page()->renderProcessPid()), SIGKILL);
    view->evaluate("0", [&] { done = true; });
    QVERIFY(waitForTitle("Map Load OK"));
    QCOMPARE(resets.size(), 1);
    QVERIFY(!done);
    draw(straightRun(50));
    QVERIFY(becomes("!!bermudaTriangle"));
  }

  void givesUpAPageThatKeepsDying() {
    const QSignalSpy lost(view.get(), &WebMapView::gaveUp);
    QVERIFY(loadBody({}));
    for (int i = 0; i < 5; ++i) {
      QCOMPARE(lost.size(), 0);
      Q_EMIT view->page()->renderProcessTerminated(QWebEnginePage::CrashedTerminationStatus, 1);
    }
    QVERIFY(loadGoogle());  // a new page begins anew
    Q_EMIT view->page()->renderProcessTerminated(QWebEnginePage::CrashedTerminationStatus, 1);
    QCOMPARE(lost.size(), 1);
  }

 private:
  bool loadBody(const QString& body) {
    return load("<base href='" + imageFolder +
                    "'><title>here</title><script>var taken = [];"
                    "function take(...a) { taken.push(...a); }</script>" +
                    body,
                "here");
  }

  QList<QUrl> opened;
};

QTEST_MAIN(WebMapViewTest)
#include "tst_webMapView.moc"
