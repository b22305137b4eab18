#include "app/profileLink.h"
#include "app/profilePane.h"
#include "tests/app/windowFixture.h"
#include "tests/columns.h"
#include "web/webEngine.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTcpServer>
#include <QWebEnginePage>
#include <QtTest>

#include <unistd.h>

/// The profile with its page in the real engine, beside the real tables. The map is recorded.
class tst_profileLink : public QObject {
  Q_OBJECT

 public:
  static void initMain() {
    if (geteuid() == 0) {
      qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
    }
  }

 private Q_SLOTS:
  void initTestCase() {
    fixture_ = std::make_unique<WindowFixture>();
    pane_ = new ProfilePane(makeWebEngine({}), fixture_->dialogs);
    fixture_->window->setProfileWidget(pane_);
    fixture_->window->resize(1280, 900);
    fixture_->window->show();
    link_ = std::make_unique<ProfileLink>(fixture_->controller.get(), pane_);
    fixture_->controller->isAvailable = true;
    fixture_->controller->checkInitMap = true;
    pane_->view->evaluate(
        "var element = id => document.getElementById(id);"
        "var key = name => element('chart').dispatchEvent(new KeyboardEvent('keydown', {key: name}));"
        "var act = (type, x) => element('chart').dispatchEvent("
        "new PointerEvent(type, {clientX: x, clientY: 30, button: 0}));"
        "element('chart').setPointerCapture = () => 0;");
    while (answer("typeof act") != "function") {
      QTestEventLoop::instance().enterLoopMSecs(10);
    }
  }
  void init() {
    showRun(-1);
    link_->mapReset();
  }
  void cleanupTestCase() {
    link_.reset();
    WindowFixture::settle();
    fixture_.reset();
  }

  void othersFollowTheCurve_data() {
    const auto row = columns<QString, int, QString, QString>("act", "row", "onMap", "values");
    const QString right = "key('ArrowRight');", away = "act('pointerleave', 0);";
    row("key", right, 0, "35.000001,139.000000", "0.000 km   07:30:00   05'00 /km   140 bpm   5 m");
    row("keys", right + right + right + "key('ArrowLeft');", 1, "35.000001,139.001000",
        "0.010 km   07:30:05   05'00 /km   140 bpm   6 m");
    row("beyond the start", right + "key('ArrowLeft');", 0, "35.000001,139.000000",
        "0.000 km   07:30:00   05'00 /km   140 bpm   5 m");
    row("pointer at the end", "act('pointermove', 5000);", 59, "35.000001,139.059000",
        "0.590 km   07:34:55   05'00 /km   140 bpm   64 m");
    row("nothing measured", right.repeated(21), 20, "35.000001,139.020000",
        "0.200 km   07:31:40   25 m");
    row("no position", right.repeated(12), 11, "360,360",
        "0.110 km   07:30:55   05'00 /km   140 bpm   16 m");
    row("pointer away", right + right + away, 1, "360,360", "");
    row("pointer away before it was there", away, -1, "", "");
  }
  void othersFollowTheCurve() {
    QFETCH(QString, act);
    QFETCH(int, row);
    QFETCH(QString, onMap);
    fixture_->controller->tView->setFocus();
    showRun(60);
    value(act);
    QTRY_COMPARE(chosenPoint(), row);
    QTRY_COMPARE(fixture_->map.calls.isEmpty() ? "" : fixture_->map.calls.last(),
                 onMap.isEmpty() ? "" : "marker_add_remover(" + onMap + ");");
    QTEST(value("element('values').hidden ? '' : element('values').textContent"), "values");
    QVERIFY(fixture_->controller->tView->hasFocus());
  }

  void curveFollowsTheTables_data() {
    const auto row = columns<bool, int, QString>("lap", "row", "distance");
    row("point", false, 30, "0.300 km");
    row("first lap", true, 1, "0.000 km");
    row("second lap", true, 2, "0.260 km");
    row("summary", true, 0, "");
  }
  void curveFollowsTheTables() {
    QFETCH(bool, lap);
    QFETCH(int, row);
    showRun(60);
    const auto* controller = fixture_->controller.get();
    (lap ? controller->lapView : controller->pointView)->selectRow(row);
    QTEST(value("element('values').hidden ? '' : element('values').textContent.split('   ')[0]"),
          "distance");
    QCOMPARE(fixture_->map.calls.size(), lap && row == 0 ? 0 : 1);
    QCOMPARE(controller->currentNumber, 7);
  }

  void aLostMapIsNotAskedForItsMarker() {
    showRun(60);
    value("key('ArrowRight');");
    QTRY_COMPARE(fixture_->map.calls.size(), 1);
    link_->mapReset();
    showRun(-1);
    QCOMPARE(fixture_->map.calls.size(), 0);
    showRun(60);
    value("key('ArrowRight'); act('pointerleave', 0);");
    QTRY_COMPARE(fixture_->map.calls.size(), 2);
  }

  void notes_data() {
    const auto row = columns<int, QString, QString>("points", "without", "note");
    row("all there", 60, "", "");
    row("no points", 0, "", "このランにはトラックポイントがありません。");
    row("no heart rate", 60, "heart", "このランには心拍数のデータがありません。");
    row("only points", 60, "pace heart altitude",
        "このランにはペース、心拍数、高度のデータがありません。");
    row("no run", -1, "", "ランを選ぶとプロフィールが表示されます。");
  }
  void notes() {
    QFETCH(int, points);
    QFETCH(QString, without);
    QFETCH(QString, note);
    showRun(points, without);
    QVERIFY(noteIs(note));
  }

  void fasterIsUp() {
    showRun(60);
    const QString labels = value(
        "[...document.querySelectorAll('.dygraph-axis-label-y1')]"
        ".sort((a, b) => a.getBoundingClientRect().top -"
        " b.getBoundingClientRect().top).map(l => l.textContent).join()");
    QVERIFY2(QRegularExpression("^(\\d\\d'\\d\\d,?){2,}$").match(labels).hasMatch(),
             qPrintable(labels));
    QStringList ordered = labels.split(',');
    ordered.sort();
    QCOMPARE(labels, ordered.join(','));
  }

  void zoom() {
    showRun(60);
    auto* whole = pane_->findChild<QPushButton*>();
    const QString labels =
        "[...document.querySelectorAll('.dygraph-axis-label-x')]"
        ".map(l => l.textContent).join()";
    const QString unzoomed = value(labels);
    value("act('pointerdown', 300); act('pointermove', 500); act('pointerup', 500);");
    QTRY_VERIFY(whole->isEnabled());
    QVERIFY2(value(labels) != unzoomed && !value(labels).contains("0.0"), qPrintable(unzoomed));
    fixture_->controller->pointView->selectRow(59);  // comes into sight
    QVERIFY(!value("element('values').textContent").isEmpty());
    showRun(60);  // a refresh
    QVERIFY(whole->isEnabled());
    QCOMPARE(chosenPoint(), 59);
    QVERIFY(value("element('values').textContent").startsWith("0.590 km"));
    QCOMPARE(fixture_->map.calls, QStringList("marker_add_remover(35.000001,139.059000);"));
    value("act('dblclick', 300);");
    QTRY_VERIFY(!whole->isEnabled());
    value("act('pointerdown', 300); act('pointermove', 302); act('pointerup', 302);");
    QVERIFY(!whole->isEnabled());
  }

  void nothingIsLoaded() {
    QTcpServer stranger;
    QVERIFY(stranger.listen(QHostAddress::LocalHost));
    const QString address = QString("http://127.0.0.1:%1/").arg(stranger.serverPort());
    value("fetch('" + address +
          "').catch(() => 0); document.body.append(Object.assign("
          "new Image(), {src: '" +
          address + "'}));");
    QVERIFY(!stranger.waitForNewConnection(300));
    QVERIFY(!pane_->view->acceptDrops());  // a dropped file is the window's
  }

 private:
  /// A run of 60 points, 10 m and 5 s each, with two laps; point 12 has no position, and from 20 to
  /// 25 nothing was measured. -1 points: no run.
  void showRun(int count, const QString& without = {}) {
    TrakkoAppDelegate& controller = *fixture_->controller;
    controller.currentNumber = count < 0 ? 0 : 7;
    controller.pointDic.clear();
    controller.lapDic.clear();
    for (int i = 0; i < count; ++i) {
      trackPointData& point = controller.pointDic["7-" + QString::number(i + 1)];
      const bool measured = i < 20 || i >= 25;
      point.T_PointTime = QTime(7, 30).addSecs(i * 5).toString("HH:mm:ss");
      point.T_PointLogSign = i == 11 ? "0" : "E";
      point.T_PointLatitudeN = "35.000001";
      point.T_PointLongitudeN = QString::number(139 + i * 0.001, 'f', 6);
      point.T_PointSpeed = without.contains("pace") || !measured ? "0" : "600";
      point.T_PointHR = without.contains("heart") || !measured ? "0" : "700";
      point.T_PointAlti = without.contains("altitude") ? "0" : QString::number(i + 5);
      point.T_PointDistance = QString::number(i * 1000);
      point.T_Setid = i + 1;
    }
    for (int i = 1; i <= 2; ++i) {
      lapData& lap = controller.lapDic["7-" + QString::number(i)];
      lap.T_LapNo = i;
      lap.T_LapDistance = "25500";
    }
    controller.pointViewData = PointRows(controller.pointDic, 7);
    controller.lapViewData = lapRows({}, controller.lapDic, 7);
    fixture_->map.calls.clear();
    const QSignalSpy shown(pane_->view, &ProfileView::zoomed);
    for (const QTableView* table : {controller.pointView, controller.lapView}) {
      qobject_cast<TableModel*>(table->model())->reload();
    }
    QTRY_COMPARE(shown.size(), 1);
  }

  int chosenPoint() const {
    const auto rows = fixture_->controller->pointView->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows[0].row();
  }

  bool noteIs(const QString& text) const {
    const auto labels = pane_->findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(),
                       [&](const QLabel* label) { return label->text() == text; });
  }

  /// The value of a script expression in the page, after what was asked before. What the page tells
  /// has reached the program, and what that answers has reached the page.
  QString value(const QString& expression) const {
    QString result = answer(expression);
    answer("0");
    return result;
  }
  QString answer(const QString& expression) const {
    QTestEventLoop loop;
    QString result;
    pane_->view->page()->runJavaScript(expression, [&](const QVariant& value) {
      result = value.toString();
      loop.exitLoop();
    });
    loop.enterLoopMSecs(30000);
    return result;
  }

  std::unique_ptr<WindowFixture> fixture_;
  ProfilePane* pane_ = nullptr;
  std::unique_ptr<ProfileLink> link_;
};

QTEST_MAIN(tst_profileLink)
#include "tst_profileLink.moc"
