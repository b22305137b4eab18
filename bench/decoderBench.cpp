#include "device/downloadDecoder.h"

#include <QLoggingCategory>
#include <array>
#include <benchmark/benchmark.h>
#include <charconv>
#include <string>
#include <vector>

// Decoding into records beside a bare table decoder of the same lines into std::string fields.

namespace {

constexpr int runCount = 20;
constexpr int lapsPerRun = 10;

QString hexLine(const std::array<quint8, 36>& block) {
  return QString::fromLatin1(QByteArray::fromRawData(reinterpret_cast<const char*>(block.data()),
                                                     static_cast<qsizetype>(block.size()))
                                 .toHex(' ')
                                 .toUpper());
}

/// A block whose payload holds plausible digits, different from line to line.
QString makeLine(int sequence, int key, quint8 type) {
  std::array<quint8, 36> block{};
  for (size_t i = 0; i < 32; ++i) {
    block[i] = static_cast<quint8>((static_cast<size_t>(sequence) * 7 + i * 5) % 0x5A);
  }
  const std::array<quint8, 11> place{
      0x35, 0x41, static_cast<quint8>(sequence % 10), 0x45, 'N', 0x01, 0x39, 0x45, 0x17, 0x56, 'E'};
  std::copy(place.begin(), place.end(), block.begin() + 15);
  block[32] = static_cast<quint8>(sequence >> 8);
  block[33] = static_cast<quint8>(sequence);
  block[34] = static_cast<quint8>(key);
  block[35] = type;
  return hexLine(block);
}

QStringList makeLines(int64_t pointsPerRun) {
  QStringList lines;
  for (int run = 0; run < runCount; ++run) {
    for (int lap = 0; lap <= lapsPerRun; ++lap) {
      lines.append(makeLine(lap, run, 0xFD));
    }
  }
  for (int run = 0; run < runCount; ++run) {
    for (int point = 0; point <= pointsPerRun; ++point) {
      lines.append(makeLine(point, run, 0xFA));
    }
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
