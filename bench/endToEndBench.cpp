// One download through the whole program: from the end marker on the line to the rows on screen,
// beside the time that the same blocks need at 115200 baud. The fixed pauses are set to nothing.

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "app/dialogs.h"
#include "base/detachThread.h"
#include "data/bundle.h"
#include "device/usbRegistry.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"
#include "web/mapView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTableView>
#include <QTemporaryDir>

#include <atomic>
#include <benchmark/benchmark.h>
#include <functional>

namespace {

constexpr double blocksPerSecond = 320.0;  // 36 bytes of 10 bits at 115200 baud

class KeepEverything : public Dialogs {
 public:
  void message(const QString&) override {}
  bool confirmErase(const QString&) override { return false; }
  bool confirm(const QString&, const QString&) override { return false; }
  QString fileToSave(const QString&, const QString&, const QString&) override { return {}; }
  QString fileToOpen(const QString&, const QString&) override { return {}; }
};

class OneWatch : public UsbRegistry {
 public:
  QString node;
  std::optional<QList<UsbDevice>> devices(quint16, quint16) const override {
    return QList<UsbDevice>{{{}, path(), {}}};
  }
  QList<SerialClient> serialClients() const override {
    return {{{}, path(), watchCalloutDevice, node}};
  }

 private:
  static QString path() { return QString(120, u'w'); }
};

class NoMap : public MapView {
 public:
  void loadPage(const QString&, const QUrl&) override {}
  void evaluate(const QString&) override {}
  void callFunction(const QString&, const QStringList&) override {}
};

void waitFor(const std::function<bool()>& condition) {
  while (!condition()) {
    QApplication::processEvents();
  }
}

void downloadToScreen(benchmark::State& state) {
  const MemoryOptions content{.runs = 6, .pointsPerRun = static_cast<qint32>(state.range(0))};
  const QList<QByteArray> memory = makeMemory(content);
  while (state.KeepRunning()) {
    QTemporaryDir folder;
    setMainBundle({folder.filePath(QStringLiteral("Trakko.app")), QStringLiteral("Trakko")});
    EmulatedWatch watch({.memory = memory, .fullSpeed = true});
    watch.start();
    ControllerContext context;
    const auto registry = std::make_shared<OneWatch>();
    registry->node = watch.path();
    context.dialogs = std::make_shared<KeepEverything>();
    context.device = {registry, context.dialogs, 5.0,
                      folder.filePath(QStringLiteral("lastDownload.txt"))};
    context.lapPause = std::chrono::milliseconds(0);
    TrakkoAppDelegate controller(context);
    MainWindow window(&controller);
    NoMap map;
    controller.theWebView = &map;
    window.show();
    controller.downloadDataBu();
    waitFor([&] { return watch.finishedDownloads() > 0; });
    QElapsedTimer timer;
    timer.start();
    waitFor([&] {
      return controller.runViewData.size() == 6 && !controller.pointViewData.empty() &&
             !controller.lapViewData.empty();
    });
    window.repaint();
    const double seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    state.SetIterationTime(seconds);
    state.counters["share_of_wire_percent"] =
        100.0 * seconds * blocksPerSecond / static_cast<double>(memory.size());
    waitFor([] { return detachedThreadCount() == 0; });
    QApplication::processEvents();
  }
}

}  // namespace

BENCHMARK(downloadToScreen)->Arg(500)->Arg(5000)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
