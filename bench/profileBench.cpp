// The profile of a run in the real engine: from a zoom, a step of the cursor or another axis to the
// frame that shows it. One frame of the screen is 16.7 ms, and the least that can be seen here.

#include "base/messenger.h"
#include "bench/sqliteShell.h"
#include "web/profileView.h"
#include "web/webEngine.h"

#include <QApplication>
#include <QEventLoop>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <functional>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

struct Silence : Messenger {
  void message(const QString& /*text*/) override {}
};

/// A run with a point a second, whose pace, heart rate and altitude are never at rest.
std::shared_ptr<const RunProfile> makeRun(qsizetype count) {
  PointDictionary points;
  LapDictionary laps;
  for (qsizetype i = 1; i <= count; ++i) {
    trackPointData& point = points[u"7-%1"_s.arg(i)];
    point.T_PointTime = QTime(0, 0).addSecs(static_cast<int>(i)).toString(u"HH:mm:ss"_s);
    point.T_PointSpeed = QString::number(560 + i * 37 % 97);
    point.T_PointHR = QString::number(650 + i * 13 % 150);
    point.T_PointAlti =
        QString::number(60 + static_cast<int>(50 * std::sin(0.001 * static_cast<double>(i))));
    point.T_PointDistance = QString::number(i * 300);
    point.T_Setid = i;
  }
  for (int i = 1; i <= 20; ++i) {
    lapData& lap = laps[u"7-%1"_s.arg(i)];
    lap.T_LapNo = i;
    lap.T_LapDistance = QString::number(count * 300 / 20);
  }
  return std::make_shared<const RunProfile>(runProfile(points, laps, 7));
}

class Page {
 public:
  explicit Page(qsizetype points)
      : view(makeWebEngine({}), std::make_shared<Silence>()), run_(makeRun(points)) {
    view.resize(860, 180);  // as in a window of 1280x800
    view.show();
    view.showRun(run_);
    for (int i = 0; i < 10; ++i) {  // the engine compiles what is called often
      painted();
      zoom(i);
    }
    painted();
  }

  /// Until the engine has painted what was asked for.
  void painted() {
    QEventLoop loop;
    const QString word = u"painted %1"_s.arg(++paintings_);
    const auto connection =
        QObject::connect(&view, &ProfileView::titleReceived, &loop, [&](const QString& title) {
          if (title == word) {
            loop.quit();
          }
        });
    view.evaluate(
        u"requestAnimationFrame(() => setTimeout(() => { document.title = '%1'; }));"_s.arg(word));
    loop.exec();
    QObject::disconnect(connection);
  }

  /// Says what the page says after a drag; each time another stretch.
  void zoom(int turn) {
    const double length = run_->points.back().along;
    const double from = length * 0.01 * (turn % 30);
    Q_EMIT view.titleReceived(u"%1 zoom %2 %3"_s.arg(turn).arg(from).arg(from + 0.6 * length));
  }
  int points() const { return static_cast<int>(run_->points.size()); }

  ProfileView view;

 private:
  std::shared_ptr<const RunProfile> run_;
  int paintings_ = 0;
};

/// What the user does again and again, each time with another number.
void measure(benchmark::State& state, const std::function<void(Page&, int)>& act) {
  Page page(state.range(0));
  std::vector<double> times;
  int turn = 0;
  for ([[maybe_unused]] const auto step : state) {
    times.push_back(seconds([&] {
      act(page, ++turn);
      page.painted();
    }));
    state.SetIterationTime(times.back());
  }
  state.counters["median_ms"] = 1000.0 * median(times);
  state.counters["longest_ms"] = 1000.0 * *std::max_element(times.begin(), times.end());
}

void emptyFrame(benchmark::State& state) {
  measure(state, [](Page&, int) {});
}

void movesCursor(benchmark::State& state) {
  measure(state, [](Page& page, int turn) { page.view.pointTo(97 * turn % page.points()); });
}

void zooms(benchmark::State& state) {
  measure(state, [](Page& page, int turn) { page.zoom(turn); });
}

void changesAxis(benchmark::State& state) {
  measure(state, [](Page& page, int turn) {
    page.view.showAxis(turn % 2 == 0 ? ProfileAxis::Distance : ProfileAxis::Time);
  });
}

void hidesCurve(benchmark::State& state) {
  measure(state, [](Page& page, int turn) {
    page.view.showCurves({.pace = true, .heartRate = turn % 2 == 0, .altitude = true});
  });
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(2'000)->Arg(50'000)->Iterations(60)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(emptyFrame)->Apply(sizes);
BENCHMARK(movesCursor)->Apply(sizes);
BENCHMARK(zooms)->Apply(sizes);
BENCHMARK(changesAxis)->Apply(sizes);
BENCHMARK(hidesCurve)->Apply(sizes);

}  // namespace

int main(int argc, char* argv[]) {
  if (geteuid() == 0) {
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
  }
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
