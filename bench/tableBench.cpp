// Filling the points table: from the points in hand to the painted rows, and how long the window
// could not answer meanwhile. The yardstick is appending the same texts to a bare vector.

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "base/text.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>

namespace {

constexpr qint64 number = 7;

PointDictionary makePoints(int count) {
  PointDictionary points;
  points.reserve(count);
  for (int i = 1; i <= count; ++i) {
    trackPointData point;
    point.T_PointTime = QStringLiteral("07:30:05");
    point.T_PointDistance = QString::number(i * 310);
    point.T_PointSpeed = QString::number(500 + i % 90);
    point.T_PointHR = QString::number(650 + i % 120);
    point.T_PointCal = QString::number(i);
    point.T_PointAlti = QString::number(20 + i % 15);
    point.T_Setid = i;
    point.T_Cnumber = number;
    points.insert(QStringLiteral("%1-%2").arg(number).arg(i), point);
  }
  return points;
}

/// Notes when the table is next painted with the rows.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(QTableView* table) : view_(table) {
    table->viewport()->installEventFilter(this);
  }
  bool painted = false;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && view_->model()->rowCount() > 0) {
      painted = true;
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  QTableView* view_;
};

void fillPointsTable(benchmark::State& state) {
  TrakkoAppDelegate controller({});
  MainWindow window(&controller);
  window.findChild<QTabWidget*>(QStringLiteral("trackTabs"))
      ->setCurrentWidget(controller.pointView);
  window.show();
  controller.currentNumber = number;
  controller.pointDic = makePoints(static_cast<int>(state.range(0)));
  double longestGap = 0;
  while (state.KeepRunning()) {
    controller.pointViewData.clear();
    qobject_cast<TableModel*>(controller.pointView->model())->reload();
    QApplication::processEvents();
    PaintWatch watch(controller.pointView);
    QElapsedTimer whole;
    whole.start();
    QElapsedTimer gap;
    controller.setPointView();
    while (!watch.painted) {
      gap.start();
      QApplication::processEvents();
      longestGap = std::max(longestGap, static_cast<double>(gap.nsecsElapsed()) * 1e-6);
    }
    state.SetIterationTime(static_cast<double>(whole.nsecsElapsed()) * 1e-9);
  }
  state.counters["longest_gap_ms"] = longestGap;
}

void copyTexts(benchmark::State& state) {
  const PointRows made(makePoints(static_cast<int>(state.range(0))), number);
  std::vector<pViewData> rows;
  for (std::size_t row = 0; row < made.size(); ++row) {
    rows.push_back(made[row]);
  }
  while (state.KeepRunning()) {
    std::vector<pViewData> copy;
    copy.reserve(rows.size());
    for (const pViewData& row : rows) {
      copy.push_back(row);
    }
    benchmark::DoNotOptimize(copy.data());
  }
}

}  // namespace

BENCHMARK(fillPointsTable)->Arg(5000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(copyTexts)->Arg(5000)->Arg(100000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
