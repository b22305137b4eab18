// Storing and reading runs, each beside the sqlite3 shell doing the same work on the same file, the
// two in turn and compared by their medians. "ratio" above 1 means faster than the shell. The
// shell's time includes its start as a process, which "shell_start_ms" gives by itself.

#include "bench/sampleRuns.h"
#include "bench/sqliteShell.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <vector>

namespace {

/// A folder with a bundle in it, whose database the store works on.
struct Folder {
  QTemporaryDir directory;
  Bundle bundle{.path = directory.filePath(QStringLiteral("Trakko.app")),
                .name = QStringLiteral("Trakko")};
  QString database = databasePath(bundle);

  Folder() { setMainBundle(bundle); }
  QString file(const char* name) const { return directory.filePath(QLatin1StringView(name)); }
  void startAnew() const {
    QFile::remove(database);
    const dataControl tables;
  }
};

/// Runs both in turn, `prepare` before each of them, and reports the medians.
template <typename Prepare, typename Ours, typename Shell>
void compare(benchmark::State& state, const Folder& folder, double rows, Prepare&& prepare,
             Ours&& ours, Shell&& shell) {
  const QString nothing = writeScript(folder.file("nothing.sql"), "select 1;\n");
  std::vector<double> ourTimes;
  std::vector<double> shellTimes;
  std::vector<double> startTimes;
  for ([[maybe_unused]] auto _ : state) {
    prepare();
    shellTimes.push_back(seconds(shell));
    prepare();
    ourTimes.push_back(seconds(ours));
    state.SetIterationTime(ourTimes.back());
    startTimes.push_back(seconds([&] { runShell(folder.file("none"), nothing); }));
  }
  state.counters["rows_per_s"] = rows / median(ourTimes);
  state.counters["shell_rows_per_s"] = rows / median(shellTimes);
  state.counters["ratio"] = median(shellTimes) / median(ourTimes);
  state.counters["shell_start_ms"] = 1000.0 * median(startTimes);
}

QByteArray scriptOf(const SampleRun& run) {
  QByteArray text =
      "begin transaction;\n" + dataControl::runSqlStr(run.runs[run.keys.first()]) + '\n';
  for (qsizetype i = 1; i <= run.points.size(); ++i) {
    text += dataControl::trackPointSqlStr(run.points[run.key(i)]) + '\n';
  }
  return text + "commit transaction;\n";
}

void store(benchmark::State& state) {
  const Folder folder;
  const SampleRun run(1, 0, state.range(0));
  const QString script = writeScript(folder.file("store.sql"), scriptOf(run));
  compare(
      state, folder, static_cast<double>(state.range(0) + 1), [&] { folder.startAnew(); },
      [&] {
        if (!run.store()) {
          state.SkipWithError("not stored");
        }
      },
      [&] { runShell(folder.database, script); });
}
BENCHMARK(store)->Arg(5000)->Iterations(25)->UseManualTime()->Unit(benchmark::kMillisecond);

/// `runs` runs of `points` points each, made by the shell.
void fill(const Folder& folder, qint64 runs, qint64 points) {
  folder.startAnew();
  const QByteArray counting =
      "with recursive r(i) as (select 1 union all select i+1 from r where i<" +
      QByteArray::number(runs) + "), p(j) as (select 1 union all select j+1 from p where j<" +
      QByteArray::number(points) + ") ";
  runShell(
      folder.database,
      writeScript(folder.file("fill.sql"),
                  counting + "insert into T_TrackPointData select null,time(j,'unixepoch'),"
                             "'139\u00b0'||(j%60)||'.1756','E','35\u00b0'||(j%60)||'.2345','N',"
                             "printf('139.%06d',j),printf('35.%06d',j),500+j%60,700+j%60,40+j%60,"
                             "'00:00:00',j*300,j*7,j,i from r,p;\n"));
}

void read(benchmark::State& state) {
  const Folder folder;
  const qint64 points = state.range(1);
  fill(folder, state.range(0), points);
  const auto number = static_cast<qint32>((state.range(0) + 1) / 2);
  const QString script =
      writeScript(folder.file("read.sql"),
                  "Select * From T_TrackPointData Where T_Cnumber=" + QByteArray::number(number) +
                      " order by T_SetId Asc;\n");
  PointDictionary answer;
  compare(
      state, folder, static_cast<double>(points), [&] { answer = {}; },
      [&] {
        dataControl data;
        answer = data.getTrackData(number);
        if (answer.size() != points) {
          state.SkipWithError("not read");
        }
      },
      [&] { runShell(folder.database, script); });
}
BENCHMARK(read)
    ->ArgNames({"runs", "points"})
    ->Args({1, 5000})
    ->Args({1, 100000})
    ->Args({1000, 2000})
    ->Iterations(15)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("trakko.*=false"));
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
