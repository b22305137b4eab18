// Counting the totals of all runs by week, month and year, from the records in hand. The yardstick
// is adding up the distances of the same runs alone.

#include "base/text.h"
#include "stats/totals.h"

#include <QDateTime>

#include <benchmark/benchmark.h>

namespace {

struct Runs {
  RunDictionary runs;
  QStringList keys;
};

/// A run every nine hours, newest first.
Runs makeRuns(int count) {
  Runs made;
  const QDateTime first(QDate(2016, 1, 1), QTime(6, 0));
  for (int number = count; number > 0; --number) {
    runData run;
    run.T_RunStartTime =
        first.addSecs(number * 32400LL).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    run.T_RunExTime = QStringLiteral("00:52:07.31");
    run.T_RunDistance = QStringLiteral("10.234");
    run.T_Cnumber = number;
    made.keys.append(text::padded(number, 2));
    made.runs.insert(made.keys.last(), run);
  }
  return made;
}

void countTotals(benchmark::State& state) {
  const Runs made = makeRuns(static_cast<int>(state.range(0)));
  const auto period = static_cast<totals::Period>(state.range(1));
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(totals::count(made.runs, made.keys, period).all.runs);
  }
}

void addDistances(benchmark::State& state) {
  const Runs made = makeRuns(static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) {
    double sum = 0;
    for (const QString& key : made.keys) {
      sum += text::toDouble(made.runs.constFind(key)->T_RunDistance);
    }
    benchmark::DoNotOptimize(sum);
  }
}

}  // namespace

BENCHMARK(countTotals)->ArgsProduct({{10000}, {0, 1, 2}})->Unit(benchmark::kMillisecond);
BENCHMARK(addDistances)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
