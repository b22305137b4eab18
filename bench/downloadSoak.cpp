// Downloads from an emulated watch at full speed, one after another, as the application makes them,
// each into an empty store. Counts what was lost or came twice and what was left behind.
//
//   download_soak [COUNT]   10000 without a number

#include "base/detachThread.h"
#include "base/messenger.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "device/usbOperating.h"
#include "tests/device/fakeRegistry.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <thread>

namespace {

constexpr qint32 runs = 2;
constexpr qint32 pointsPerRun = 20;

qsizetype entries(const char* folder) {
  return QDir(QString::fromLatin1(folder))
      .entryList(QDir::NoDotAndDotDot | QDir::AllEntries)
      .size();
}

/// What is there beside the sender's blocks after a download.
struct Losses {
  qint64 missing = 0;
  qint64 duplicated = 0;
};

qint32 download(const DeviceEnvironment& environment, const QStringList& sent, Losses& losses) {
  const auto session = std::make_shared<WatchSession>();
  if (!usbOperating::create(environment, session)->linkCommand()) {
    return -99;
  }
  const auto usb = usbOperating::create(environment, session);
  const qint32 code = usb->getAllData();
  const std::lock_guard lock(usb->chStrMutex);
  if (usb->chStr != sent) {
    (usb->chStr.size() > sent.size() ? losses.duplicated : losses.missing) += 1;
  }
  return code;
}

/// The stored runs and points, and an empty store again.
bool takeStored() {
  dataControl store;
  const qsizetype stored = store.getRunData(QStringLiteral("ALL"), QString()).size();
  const qsizetype points = store.getTrackData(1).size() + store.getTrackData(2).size();
  store.close_db();
  dataControl().deleteAllData();
  return stored == runs && points == qsizetype{runs} * pointsPerRun;
}

void awaitThreads() {
  for (int tries = 0; detachedThreadCount() > 0 && tries < 1000; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

int soak(int count) {
  const QTemporaryDir folder;
  setMainBundle({folder.filePath(QStringLiteral("Trakko.app")), QStringLiteral("Trakko")});
  EmulatedWatchOptions options;
  MemoryOptions memory;
  memory.runs = runs;
  memory.pointsPerRun = pointsPerRun;
  options.memory = makeMemory(memory);
  options.fullSpeed = true;
  EmulatedWatch watch(options);
  if (!watch.start().isNull()) {
    std::puts("no pseudo-terminal");
    return EXIT_FAILURE;
  }
  QStringList sent;
  for (const QByteArray& block : options.memory) {
    sent.append(lineFromBlock(block));
  }
  auto registry = std::make_shared<FakeRegistry>();
  registry->plugWatch(watch.path());
  const DeviceEnvironment environment{registry, nullptr, 5.0,
                                      folder.filePath(QStringLiteral("lastDownload.txt"))};
  dataControl().deleteAllData();  // makes the tables, if that is what it takes

  const qsizetype threads = entries("/proc/self/task");
  const qsizetype descriptors = entries("/proc/self/fd");
  std::map<qint32, int> codes;
  Losses losses;
  int wrongStores = 0;
  QElapsedTimer timer;
  timer.start();
  for (int round = 0; round < count; ++round) {
    const qint32 code = download(environment, sent, losses);
    ++codes[code];
    if (code == 1 && !takeStored()) {
      ++wrongStores;
    }
  }
  const double seconds = double(timer.elapsed()) / 1000;
  awaitThreads();

  std::printf("%d downloads of %lld blocks in %.1f s\n", count, static_cast<long long>(sent.size()),
              seconds);
  for (const auto& [code, times] : codes) {
    std::printf("  code %d: %d\n", code, times);
  }
  std::printf("lines missing in %lld, too many in %lld, store wrong after %d\n",
              static_cast<long long>(losses.missing), static_cast<long long>(losses.duplicated),
              wrongStores);
  std::printf("threads %lld before, %lld after; descriptors %lld before, %lld after\n",
              static_cast<long long>(threads), static_cast<long long>(entries("/proc/self/task")),
              static_cast<long long>(descriptors),
              static_cast<long long>(entries("/proc/self/fd")));
  const bool good = losses.missing == 0 && losses.duplicated == 0 && wrongStores == 0 &&
                    entries("/proc/self/task") == threads &&
                    entries("/proc/self/fd") == descriptors;
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
  return soak(argc > 1 ? std::atoi(argv[1]) : 10000);
}
