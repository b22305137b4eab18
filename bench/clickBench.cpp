// What a click on a run reads, beside the sqlite3 shell with the same question on the same file:
//   bench_click [FOLDER]
// FOLDER holds a database of make_database; without one a small database is made for the round.
// "located" is 1 when the place of the run's points is known, as it is some seconds after the
// start.

#include "bench/sampleRuns.h"
#include "bench/sqliteShell.h"
#include "data/pointLocator.h"

#include <QLoggingCategory>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

QString database;
QString scratch;

void locate(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    if (!pointLocator::locate(database)) {
      state.SkipWithError("not located");
    }
  }
}

void click(benchmark::State& state) {
  const qint64 runs = dataControl().getMaxCnumber(QStringLiteral("T_RunData"));
  if (state.range(0) == 1) {
    pointLocator::locate(database);
  }
  qint64 number = 0;
  std::vector<double> ours;
  std::vector<double> shells;
  qsizetype points = 0;
  for ([[maybe_unused]] auto _ : state) {
    number = (number + 7919) % runs;
    const QString script =
        writeScript(scratch, "Select * From T_TrackPointData Where T_Cnumber=" +
                                 QByteArray::number(number + 1) + " order by T_SetId Asc;\n");
    shells.push_back(seconds([&] { runShell(database, script); }));
    ours.push_back(seconds([&] {
      points = dataControl().getTrackData(static_cast<qint32>(number + 1)).size();
      dataControl().getLapData(static_cast<qint32>(number + 1));
    }));
    state.SetIterationTime(ours.back());
  }
  state.counters["points"] = static_cast<double>(points);
  state.counters["median_ms"] = 1000.0 * median(ours);
  state.counters["shell_ms"] = 1000.0 * median(shells);
}

// In this order: before anything was located, every click reads all points.
BENCHMARK(click)->ArgName("located")->Arg(0)->Iterations(9)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(locate)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(click)->ArgName("located")->Arg(1)->Iterations(25)->UseManualTime()->Unit(
    benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("trakko.*=false"));
  benchmark::Initialize(&argc, argv);
  const QTemporaryDir own;
  scratch = own.filePath(QStringLiteral("question.sql"));
  database = useFolder(argc > 1 ? QFile::decodeName(argv[1]) : own.path());
  if (argc <= 1) {
    fillStore(30, 2000);
  } else if (!QFile::exists(database)) {
    qFatal("no database there");
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
