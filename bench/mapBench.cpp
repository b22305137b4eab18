// From a run's points to its track on the map: the page's expression beside a bare append of the
// same numbers, and the way from a click to the painted track in the real engine.

#include "base/messenger.h"
#include "base/text.h"
#include "map/mapPages.h"
#include "map/trackOverlay.h"
#include "web/webMapView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <benchmark/benchmark.h>
#include <cmath>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 number = 7;

struct Silence : Messenger {
  void message(const QString& /*text*/) override {}
};

/// A point a second on a winding way, with a pause every half an hour.
PointDictionary points(qsizetype count) {
  PointDictionary result;
  result.reserve(count);
  qsizetype second = 0;
  for (qsizetype i = 1; i <= count; ++i) {
    const bool pause = i % 1800 == 0;
    second += pause ? 75 : 1;
    trackPointData& point = result[u"%1-%2"_s.arg(number).arg(i)];
    const double way = 0.0005 * static_cast<double>(i);
    point.T_PointTime = text::padded(second / 3600 % 24, 2) + u':' +
                        text::padded(second / 60 % 60, 2) + u':' + text::padded(second % 60, 2);
    point.T_PointLatSign = u"N"_s;
    point.T_PointLogSign = u"E"_s;
    point.T_PointLatitudeN = text::fixed(35.68 + 0.02 * std::sin(way) + 0.001 * way, 6);
    point.T_PointLongitudeN = text::fixed(139.75 + 0.03 * std::cos(1.3 * way), 6);
    point.T_PointSpeed = pause ? u"0"_s : u"541"_s;
  }
  return result;
}

void buildsOverlay(benchmark::State& state) {
  const PointDictionary run = points(state.range(0));
  for ([[maybe_unused]] const auto step : state) {
    benchmark::DoNotOptimize(buildGoogleOverlay(run, number, QString()));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void appendsBareNumbers(benchmark::State& state) {
  std::vector<std::pair<double, double>> numbers;
  for (const trackPointData& point : points(state.range(0))) {
    numbers.emplace_back(text::toDouble(point.T_PointLatitudeN),
                         text::toDouble(point.T_PointLongitudeN));
  }
  for ([[maybe_unused]] const auto step : state) {
    std::string out;
    for (const auto& [lat, lon] : numbers) {
      out.append(std::to_string(lat)).append(std::to_string(lon));
    }
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// The page with the bundled map, from nothing; tiles from nowhere.
class Page {
 public:
  Page() {
    PageSettings settings{u"file://" TRAKKO_IMAGES "/"_s, configuredMapSettings()};
    settings.services.googleKey.clear();
    settings.services.tileAddress = u"http://127.0.0.1:1/{z}/{x}/{y}.png"_s;
    view = std::make_unique<WebMapView>(std::make_shared<Silence>(), settings.services, QString());
    view->resize(760, 520);
    view->show();
    view->loadPage(gethtmlStr(settings), QUrl(settings.imageFolder));
    waitForTitle(u"Map Load OK"_s);
  }

  void waitForTitle(const QString& title) const {
    QEventLoop loop;
    QObject::connect(view.get(), &WebMapView::titleReceived, &loop, [&](const QString& received) {
      if (received == title) {
        loop.quit();
      }
    });
    loop.exec();
  }

  /// Draws as the controller does and waits until the engine has painted.
  void draw(const TrackOverlay& track) const {
    const auto degrees = [](double value) { return text::fixed(value, 6); };
    view->evaluate(u"initMap();"_s);
    view->callFunction(
        u"MapPolyline"_s,
        {track.expression, track.breakPointStr == u"1" ? u"1"_s : u"0"_s, track.breakPointStr});
    view->callFunction(u"Setfitbounds"_s,
                       {degrees(track.bounds.minLat), degrees(track.bounds.maxLat),
                        degrees(track.bounds.minLon), degrees(track.bounds.maxLon)});
    view->callFunction(u"midLineArrows"_s, {track.arrPointStr});
    view->evaluate(
        u"requestAnimationFrame(() => setTimeout(() => { document.title = 'painted'; }));"_s);
    waitForTitle(u"painted"_s);
  }

  std::unique_ptr<WebMapView> view;
};

void loadsPage(benchmark::State& state) {
  for ([[maybe_unused]] const auto step : state) {
    QElapsedTimer timer;
    timer.start();
    const Page page;
    state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) / 1e9);
  }
}

void clickToPaintedTrack(benchmark::State& state) {
  const PointDictionary run = points(state.range(0));
  const Page page;
  page.draw(buildGoogleOverlay(points(100), number, QString()));
  for ([[maybe_unused]] const auto step : state) {
    QElapsedTimer timer;
    timer.start();
    page.draw(buildGoogleOverlay(run, number, QString()));
    state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) / 1e9);
  }
}

BENCHMARK(buildsOverlay)->Arg(5'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(appendsBareNumbers)->Arg(5'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(loadsPage)->Iterations(1)->Repetitions(7)->UseManualTime()->ReportAggregatesOnly()->Unit(
    benchmark::kMillisecond);
BENCHMARK(clickToPaintedTrack)
    ->Arg(5'000)
    ->Arg(100'000)
    ->Iterations(1)
    ->Repetitions(15)
    ->UseManualTime()
    ->ReportAggregatesOnly()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char* argv[]) {
  if (geteuid() == 0) {
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
  }
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  registerMapScheme();
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
