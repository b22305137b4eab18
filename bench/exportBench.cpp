// How fast a run becomes a TCX or GPX file, beside gpsbabel rewriting the same number of points.

#include "base/text.h"
#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/tcxWriter.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 number = 7;
const QString startTime = u"2014-05-01 07:30:00"_s;
const QString offset = u"+09:00"_s;

LapDictionary laps(qsizetype count) {
  LapDictionary result;
  for (qsizetype i = 1; i <= count; ++i) {
    lapData& lap = result[u"%1-%2"_s.arg(number).arg(i)];
    lap.T_LapTime = u"00:05:12.34"_s;
    lap.T_LapDistance = u"100000"_s;
    lap.T_LapCal = u"712345"_s;
    lap.T_LapMaxSpeed = u"143"_s;
  }
  return result;
}

// A point a second, three metres apart, in all four quarters of the globe.
PointDictionary points(qsizetype count) {
  PointDictionary result;
  result.reserve(count);
  for (qsizetype i = 1; i <= count; ++i) {
    trackPointData& point = result[u"%1-%2"_s.arg(number).arg(i)];
    const qsizetype second = i % 86400;
    point.T_PointTime =
        u"%1:%2:%3"_s.arg(text::padded(second / 3600, 2), text::padded(second / 60 % 60, 2),
                          text::padded(second % 60, 2));
    point.T_PointLatSign = i % 4 < 2 ? u"N"_s : u"S"_s;
    point.T_PointLogSign = i % 2 == 0 ? u"E"_s : u"W"_s;
    point.T_PointLatitudeN = text::fixed(35.0 + 1e-5 * static_cast<double>(i), 6);
    point.T_PointLongitudeN = text::fixed(139.0 + 1e-5 * static_cast<double>(i), 6);
    point.T_PointSpeed = u"541"_s;
    point.T_PointHR = u"724"_s;
    point.T_PointDistance = QString::number(300 * i);
  }
  return result;
}

void writesTcx(benchmark::State& state) {
  const LapDictionary lapRecords = laps(state.range(0) / 300);
  const PointDictionary pointRecords = points(state.range(0));
  for ([[maybe_unused]] const auto step : state) {
    benchmark::DoNotOptimize(writeTcx(lapRecords, pointRecords, number, startTime, offset));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void writesGpx(benchmark::State& state) {
  const PointDictionary pointRecords = points(state.range(0));
  for ([[maybe_unused]] const auto step : state) {
    benchmark::DoNotOptimize(writeGpx(pointRecords, number, startTime, offset));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The yardstick: the whole process, reading a GPX file and writing `format`.
void gpsbabel(benchmark::State& state, const QString& format) {
  const QString program = QStandardPaths::findExecutable(u"gpsbabel"_s);
  if (program.isEmpty()) {
    state.SkipWithError("gpsbabel is not installed");
    return;
  }
  const QTemporaryDir folder;
  const QString input = folder.filePath(u"in.gpx"_s);
  writeFileAtomically(input, writeGpx(points(state.range(0)), number, startTime, offset));
  const QStringList arguments{u"-t"_s, u"-i"_s, u"gpx"_s,
                              u"-f"_s, input,   u"-o"_s,
                              format,  u"-F"_s, folder.filePath(u"out"_s)};
  for ([[maybe_unused]] const auto step : state) {
    if (QProcess::execute(program, arguments) != 0) {
      state.SkipWithError("gpsbabel failed");
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(5000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(writesGpx)->Apply(sizes);
BENCHMARK_CAPTURE(gpsbabel, gpx, u"gpx"_s)->Apply(sizes);
BENCHMARK(writesTcx)->Apply(sizes);
BENCHMARK_CAPTURE(gpsbabel, tcx, u"gtrnctr"_s)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
