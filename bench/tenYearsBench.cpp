// Ten years of runs in the real window, with map and profile: how long the start, a click and quick
// keys take until they are painted, and what the program and its helper processes hold in memory.
// The sqlite3 shell answers the same questions beside it.
//
//   bench_ten_years FOLDER         on a database of make_database, which is only read
//   bench_ten_years --views N      N drawings of one run of 50,000 points, on a database of its own
//   bench_ten_years                a short round of both, only to see that they still work

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "app/profileLink.h"
#include "app/profilePane.h"
#include "base/detachThread.h"
#include "base/memory.h"
#include "bench/processMemory.h"
#include "bench/sampleRuns.h"
#include "bench/sqliteShell.h"
#include "web/webEngine.h"
#include "web/webMapView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTableView>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <random>

namespace {

using namespace Qt::StringLiterals;

constexpr int keyPresses = 20;
constexpr auto pauseOfKeys = 20;  // milliseconds

struct NoDialogs : Dialogs {
  void message(const QString& text) override { std::fputs(qUtf8Printable(text + u'\n'), stderr); }
  bool confirmErase(const QString& /*text*/) override { return false; }
  bool confirm(const QString&, const QString&) override { return false; }
  QString fileToSave(const QString&, const QString&, const QString&) override { return {}; }
  QString fileToOpen(const QString&, const QString&) override { return {}; }
};

void print(const char* what, double value, const char* unit) {
  std::printf("%-62s %9.1f %s\n", what, value, unit);
  (void)std::fflush(stdout);
}

void waitFor(const std::function<bool()>& condition) {
  QTimer look;
  look.start(2);
  while (!condition()) {
    QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
}

/// The program's window on the store in use, as main() puts it together.
class Program : public QObject {
 public:
  Program() {
    ControllerContext context;
    const auto dialogs = std::make_shared<NoDialogs>();
    context.dialogs = dialogs;
    context.mapServices.googleKey.clear();
    context.mapServices.tileAddress = u"http://127.0.0.1:1/{z}/{x}/{y}.png"_s;
    controller = std::make_unique<TrakkoAppDelegate>(context);
    window = std::make_unique<MainWindow>(controller.get());
    map_ = new WebMapView(dialogs, context.mapServices, QString());
    window->setMapWidget(map_);
    profile_ = new ProfilePane(map_->engine(), dialogs);
    window->setProfileWidget(profile_);
    controller->theWebView = map_;
    connect(map_, &WebMapView::titleReceived, this, [this](const QString& title) {
      mapPainted_ = mapPainted_ || title == marker();
      controller->didReceiveTitle(title);
    });
    connect(profile_->view, &ProfileView::titleReceived, this,
            [this](const QString& title) { curvePainted_ = curvePainted_ || title == marker(); });
    link_ = std::make_unique<ProfileLink>(controller.get(), profile_);
    // The track is drawn in the same turn of the event loop as the points; the frame behind it is
    // the track's.
    connect(
        controller->pointView->model(), &QAbstractItemModel::modelReset, this,
        [this] { askForFrame(*map_); }, Qt::QueuedConnection);
    connect(profile_->view, &ProfileView::zoomed, this,
            [this](bool /*isPart*/) { askForFrame(*profile_->view); });
    controller->tView->viewport()->installEventFilter(this);
    controller->awakeFromNib();
    window->show();
    controller->applicationDidFinishLaunching();
  }

  /// Until the rows are on screen.
  void waitForRows() {
    waitFor([this] { return rowsPainted_; });
  }
  /// Until the first run is drawn.
  void waitForMap() {
    waitFor([this] { return controller->checkInitMap && hasCurrentRun(); });
    waitForTrack();
  }
  /// Until the program has given back what it does not need.
  void waitForRest(bool isBrief) {
    constexpr qint64 restTime = 11'000;
    waitForThreads();
    QElapsedTimer rest;
    rest.start();
    waitFor([&] { return isBrief || rest.hasExpired(restTime); });
  }
  /// Until it is known where each run's points lie.
  void waitForThreads() {
    waitFor([] { return detachedThreadCount() == 0; });
  }
  /// Milliseconds from the choice of the row to the painted track, and to its painted profile.
  std::pair<double, double> show(int row) {
    QElapsedTimer timer;
    beginDrawing();
    timer.start();
    controller->tView->selectRow(row);
    controller->tableviewClick(row);
    waitForTrack();
    const double track = 1e-6 * static_cast<double>(timer.nsecsElapsed());
    waitFor([this] { return curvePainted_; });
    return {track, 1e-6 * static_cast<double>(timer.nsecsElapsed())};
  }
  void beginDrawing() {
    ++drawing_;
    mapPainted_ = curvePainted_ = false;
  }
  /// Until the run that was chosen last is painted on the map and stands in the points table.
  void waitForTrack() {
    waitFor([this] { return mapPainted_ && hasCurrentRun(); });
  }

  std::unique_ptr<TrakkoAppDelegate> controller;
  std::unique_ptr<MainWindow> window;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    rowsPainted_ =
        rowsPainted_ || (event->type() == QEvent::Paint && !controller->runViewData.empty());
    return QObject::eventFilter(watched, event);
  }

 private:
  QString marker() const { return u"painted %1"_s.arg(drawing_); }
  void askForFrame(WebPageHost& page) const {
    page.evaluate(
        u"requestAnimationFrame(() => setTimeout(() => { document.title = '%1'; }));"_s.arg(
            marker()));
  }
  bool hasCurrentRun() const {
    return controller->pointDic.contains(QString::number(controller->currentNumber) + u"-1"_s);
  }

  WebMapView* map_ = nullptr;
  ProfilePane* profile_ = nullptr;
  std::unique_ptr<ProfileLink> link_;
  int drawing_ = 0;
  bool rowsPainted_ = false;
  bool mapPainted_ = false;
  bool curvePainted_ = false;
};

double shellTime(const QByteArray& question) {
  const QTemporaryDir scripts;
  const QString script = writeScript(scripts.filePath(u"question"_s), question);
  return 1000.0 * seconds([&] { runShell(databasePath(mainBundle()), script); });
}

void measureClicks(Program& program, int clicks, const char* when) {
  std::minstd_rand random(1);  // the same rows each time
  std::vector<double> tracks;
  std::vector<double> curves;
  for (int i = 0; i < clicks; ++i) {
    const auto runs = static_cast<unsigned>(program.controller->runKArr.size());
    const auto [track, curve] = program.show(static_cast<int>(random() % runs));
    tracks.push_back(track);
    curves.push_back(curve);
  }
  std::printf("clicks %s:\n", when);
  print("  click to painted track, median", median(tracks), "ms");
  print("  click to painted track, longest", *std::max_element(tracks.begin(), tracks.end()), "ms");
  print("  click to painted profile, median", median(curves), "ms");
}

void measureKeys(Program& program) {
  QTableView* runs = program.controller->tView;
  const auto send = [runs](QEvent::Type type) {
    QKeyEvent event(type, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(runs, &event);
  };
  program.show(0);
  program.waitForThreads();
  const int threads = threadsOfProcess();
  int most = 0;
  int loaders = 0;
  QElapsedTimer timer;
  for (int press = 0; press < keyPresses; ++press) {
    program.beginDrawing();
    timer.start();
    send(QEvent::KeyPress);
    send(QEvent::KeyRelease);
    loaders = std::max(loaders, detachedThreadCount());
    for (QElapsedTimer pause = timer; press + 1 < keyPresses && !pause.hasExpired(pauseOfKeys);) {
      QApplication::processEvents(QEventLoop::AllEvents, 1);
      QThread::msleep(1);
      loaders = std::max(loaders, detachedThreadCount());
      most = std::max(most, threadsOfProcess() - threads);
    }
  }
  program.waitForTrack();
  print("last of 20 quick keys to its run on screen",
        1e-6 * static_cast<double>(timer.nsecsElapsed()), "ms");
  print("  threads of the program at work meanwhile, at most", loaders, "");
  print("  threads of the process more than before, at most", most, "");
}

void measureQuestions(int clicks) {
  Program program;
  program.waitForRows();
  print("process start to rows on screen", millisecondsOfProcess(), "ms");
  print("  runs", static_cast<double>(program.controller->runKArr.size()), "");
  program.waitForMap();
  print("process start to the first track on the map", millisecondsOfProcess(), "ms");
  measureClicks(program, std::min(clicks, 5), "right after the start");
  program.waitForThreads();
  print("process start to all points located", millisecondsOfProcess(), "ms");
  print("memory of all processes", memoryOfProcesses(), "MiB");
  measureClicks(program, clicks, "later");
  measureKeys(program);
  program.waitForRest(clicks < 10);
  print("memory of all processes after a rest", memoryOfProcesses(), "MiB");
  const QByteArray shown = QByteArray::number(program.controller->currentNumber);
  print("sqlite3 printing all runs",
        shellTime("Select * From T_RunData Order by datetime(T_RunStartTime) desc;"), "ms");
  print("sqlite3 printing laps and points of one run",
        shellTime("Select * From T_LapData Where T_Cnumber=" + shown + ";" +
                  "Select * From T_TrackPointData Where T_Cnumber=" + shown +
                  " order by T_SetId Asc;"),
        "ms");
}

/// Whether drawing a long run again and again takes more memory each time.
void measureViews(int views, qint64 points) {
  const QTemporaryDir folder;
  useFolder(folder.path());
  fillStore(2, points);
  Program program;
  program.waitForRows();
  program.waitForMap();
  program.waitForThreads();
  double first = 0;
  std::vector<double> times;
  for (int view = 1; view <= views; ++view) {
    times.push_back(program.show(view % 2).first);
    if (view == 1 || view == views || view % 25 == 0) {
      const double busy = memoryOfProcesses();
      program.waitForRest(views < 10);
      const double now = memoryOfProcesses();
      const double own = memoryOf(QCoreApplication::applicationPid());
      first = view == 1 ? now : first;
      std::printf(
          "view %3d: %.1f MiB in all processes, %.1f after a rest (%+.1f %%), %.1f our own\n", view,
          busy, now, 100.0 * (now - first) / first, own);
      (void)std::fflush(stdout);
    }
  }
  print("click to painted track of the long run, median", median(times), "ms");
}

}  // namespace

int main(int argc, char* argv[]) {
  if (geteuid() == 0) {
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
  }
  registerMapScheme();
  setUpWebEngine();
  shareHeaps();
  const QApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  constexpr int clicks = 50;
  constexpr int longRun = 50'000;
  if (arguments.value(1) == u"--views"_s) {
    measureViews(arguments.value(2).toInt(), longRun);
  } else if (arguments.size() == 2) {
    useFolder(arguments.value(1));
    measureQuestions(clicks);
  } else {
    const QTemporaryDir folder;
    useFolder(folder.path());
    fillStore(30, 200);
    measureQuestions(3);
    measureViews(3, 2000);
  }
  std::_Exit(EXIT_SUCCESS);  // the engine need not be taken down
}
