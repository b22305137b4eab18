#include "device/downloadDecoder.h"
#include "tools/watchsim/watchMemory.h"

#include <QLoggingCategory>

#include <array>
#include <benchmark/benchmark.h>
#include <string>
#include <vector>

// Decoding into records beside a bare table decoder of the same lines into std::string fields.

namespace {

constexpr qint32 runCount = 20;

/// What a watch full of runs sends, with this many points for each run.
QStringList makeLines(int64_t pointsPerRun) {
  QStringList lines;
  MemoryOptions options;
  options.runs = runCount;
  options.pointsPerRun = static_cast<qint32>(pointsPerRun);
  for (const QByteArray& block : makeMemory(options)) {
    lines.append(lineFromBlock(block));
  }
  return lines;
}

void decodeIntoRecords(benchmark::State& state) {
  const QStringList lines = makeLines(state.range(0));
  DecodeContext context;
  context.zone = QTimeZone::utc();
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(decodeDownload(lines, context));
  }
  state.SetItemsProcessed(state.iterations() * lines.size());
}
BENCHMARK(decodeIntoRecords)->Arg(250)->Arg(2000)->Unit(benchmark::kMillisecond);

struct Field {
  size_t first;
  size_t count;
};
constexpr std::array<Field, 13> fields{{{0, 4},
                                        {4, 2},
                                        {6, 1},
                                        {7, 1},
                                        {8, 1},
                                        {10, 2},
                                        {12, 3},
                                        {15, 1},
                                        {16, 3},
                                        {20, 2},
                                        {22, 3},
                                        {26, 2},
                                        {28, 4}}};

unsigned nibble(char digit) {
  return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

void tableDecoder(benchmark::State& state) {
  std::vector<std::string> lines;
  for (const QString& line : makeLines(state.range(0))) {
    lines.push_back(line.toStdString());
  }
  while (state.KeepRunning()) {
    std::vector<std::array<std::string, fields.size()>> records(lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {
      for (size_t f = 0; f < fields.size(); ++f) {
        unsigned long value = 0;
        for (size_t k = fields[f].first; k < fields[f].first + fields[f].count; ++k) {
          value = value << 8U | nibble(lines[i][3 * k]) << 4U | nibble(lines[i][3 * k + 1]);
        }
        records[i][f] = std::to_string(value);
      }
    }
    benchmark::DoNotOptimize(records.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(lines.size()));
}
BENCHMARK(tableDecoder)->Arg(250)->Arg(2000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("trakko.*=false"));
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
