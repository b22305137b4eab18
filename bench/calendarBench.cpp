// Drawing the calendar month, beside the sqlite3 shell answering the same 31 questions about the
// same file, the two in turn and compared by their medians. "ratio" above 1 means faster than the
// shell; "net_ratio" leaves out the shell's start as a process.

#include "app/DFView.h"
#include "base/text.h"
#include "bench/sqliteShell.h"
#include "data/bundle.h"
#include "data/dataControl.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QPixmap>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QDate month(2024, 3, 1);

/// A folder whose database holds `count` runs: the last fifteen on every other day of the month
/// drawn, the others on the days before, as a database grows.
class Folder {
 public:
  explicit Folder(qint64 count) {
    setMainBundle({directory.filePath(u"Trakko.app"_s), u"Trakko"_s});
    const dataControl tables;
    dataControl::Statements statements;
    for (qint64 i = 0; i < count; ++i) {
      statements.push_back(dataControl::runSqlStr(sampleRun(i, count - i)));
    }
    if (dataControl store; store.inData(statements) != 1) {
      qFatal("the runs cannot be stored");
    }
  }

  QString file(const QString& name) const { return directory.filePath(name); }

 private:
  QTemporaryDir directory;

  static runData sampleRun(qint64 i, qint64 toTheEnd) {
    const QDate day = month.addDays(toTheEnd <= 15 ? 30 - 2 * toTheEnd : -toTheEnd);
    runData run;
    run.T_RunStartTime = day.toString(u"yyyy-MM-dd"_s) + u" 07:30:05"_s;
    run.T_RunEndTime = day.toString(u"yyyy-MM-dd"_s) + u" 08:21:44"_s;
    run.T_RunExTime = u"00:51:39.20"_s;
    run.T_RunDistance = text::padded(1000000 + i, 1);
    run.T_RunCal = u"6543210"_s;
    run.T_RunLap = 10;
    run.T_RunMaxSpeed = run.T_RunAvgSpeed = u"143"_s;
    run.T_RunMaxHR = run.T_RunAvgHR = run.T_RunMinHR = u"144"_s;
    run.T_RunTimeZone = u"00:00:00"_s;
    run.T_RunTrackPoint = 3000;
    run.T_RunTrackMaxSpeed = run.T_RunAsc = run.T_RunDsc = u"120"_s;
    run.T_RunName = run.T_UserName = u"R001"_s;
    run.T_RunType = run.T_RunAlti = u"0"_s;
    run.T_Cnumber = i + 1;
    run.T_IdNumber = u"00000001"_s;
    return run;
  }
};

QByteArray questions() {
  QByteArray script;
  for (int day = 0; day < 31; ++day) {
    const QByteArray text = month.addDays(day).toString(u"yyyy-MM-dd"_s).toLatin1();
    script += "Select * From T_RunData  Where T_RunStartTime Between '" + text +
              " 00:00:00' and '" + text + " 23:59:59' ;\n";
  }
  return script;
}

void drawMonth(benchmark::State& state) {
  const Folder folder(state.range(0));
  const QString ask = writeScript(folder.file(u"ask.sql"_s), questions());
  const QString nothing = writeScript(folder.file(u"nothing.sql"_s), "select 1;\n");
  const QString database = folder.file(u"gpsData.db3"_s);
  DFView view;
  view.resize(view.sizeHint());
  view.currentDay = month;
  QPixmap picture(view.size());
  view.render(&picture);  // loads the fonts
  std::vector<double> drawing;
  std::vector<double> shell;
  std::vector<double> shellStart;
  for ([[maybe_unused]] auto _ : state) {
    shell.push_back(seconds([&] { runShell(database, ask); }));
    drawing.push_back(seconds([&] { view.render(&picture); }));
    shellStart.push_back(seconds([&] { runShell(database, nothing); }));
    state.SetIterationTime(drawing.back());
  }
  state.counters["draw_ms"] = 1000 * median(drawing);
  state.counters["shell_ms"] = 1000 * median(shell);
  state.counters["ratio"] = median(shell) / median(drawing);
  state.counters["net_ratio"] = (median(shell) - median(shellStart)) / median(drawing);
}
BENCHMARK(drawMonth)
    ->ArgName("runs")
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(51)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QLoggingCategory::setFilterRules(u"trakko.*=false"_s);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
