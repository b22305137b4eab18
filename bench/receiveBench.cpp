// Blocks per second through a pseudo-terminal: the receive thread beside a bare loop of read(36).
// The watch's line carries 320 a second.

#include "base/messenger.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"
#include "tests/device/fakeRegistry.h"
#include "tests/device/pseudoTerminal.h"

#include <QLoggingCategory>

#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <thread>

namespace {

constexpr int blockSize = 36;
constexpr int blocksPerRound = 50000;
constexpr int blocksPerWrite = 64;  // the writer must not be what is measured

double bareBlocksPerSecond = 0;

/// Writes the blocks of a round and an end marker from a thread of its own.
std::thread sendRound(const PseudoTerminal& line) {
  return std::thread([&line] {
    const QByteArray part(qsizetype{blockSize} * blocksPerWrite, '\x5A');
    for (int sent = 0; sent < blocksPerRound; sent += blocksPerWrite) {
      line.send(part);
    }
    line.send(QByteArray(blockSize, '\xEE'));
  });
}

constexpr int blocksSent = (blocksPerRound + blocksPerWrite - 1) / blocksPerWrite * blocksPerWrite;

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void bareRead(benchmark::State& state) {
  const PseudoTerminal line;
  SerialPort port;
  port.open(line.path, 115200);
  ::fcntl(port.descriptor, F_SETFL,
          0);  // the loop below waits in read(), which the port never does
  double total = 0;
  while (state.KeepRunning()) {
    const auto start = std::chrono::steady_clock::now();
    std::thread writer = sendRound(line);
    std::array<char, blockSize> block{};
    qint64 missing = qint64{blocksSent + 1} * blockSize;
    while (missing > 0) {
      const ssize_t count = ::read(port.descriptor, block.data(), block.size());
      if (count <= 0) {
        state.SkipWithError("the line broke");
        break;
      }
      missing -= count;
    }
    const double seconds = secondsSince(start);
    writer.join();
    total += seconds;
    state.SetIterationTime(seconds);
  }
  bareBlocksPerSecond = double(state.iterations()) * blocksSent / total;
  state.SetItemsProcessed(state.iterations() * blocksSent);
}

void receiveThread(benchmark::State& state) {
  const PseudoTerminal line;
  auto registry = std::make_shared<FakeRegistry>();
  registry->plugWatch(line.path);
  DeviceEnvironment environment;
  environment.registry = registry;
  double total = 0;
  while (state.KeepRunning()) {
    const auto usb = usbOperating::create(environment);
    usb->getDataType = 1;
    usb->findDevice(60000);
    usb->SendCommandStr();
    line.receive(32);
    const auto start = std::chrono::steady_clock::now();
    std::thread writer = sendRound(line);
    while (!usb->downloadDataFinish) {
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    const double seconds = secondsSince(start);
    writer.join();
    total += seconds;
    state.SetIterationTime(seconds);
    const std::lock_guard lock(usb->chStrMutex);
    if (usb->chStr.size() != blocksSent) {
      state.SkipWithError("blocks were lost");
    }
  }
  state.SetItemsProcessed(state.iterations() * blocksSent);
  state.counters["of_bare_read"] =
      double(state.iterations()) * blocksSent / total / bareBlocksPerSecond;
}

BENCHMARK(bareRead)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(receiveThread)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
