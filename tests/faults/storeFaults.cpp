// What faults leave of the database. `storeFaults PROOF ROUNDS` prints a line of the table and ends
// with 0 when nothing that was acknowledged is lost and nothing is half there.

#include "base/detachThread.h"
#include "data/databaseFile.h"
#include "device/usbOperating.h"
#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/tcxWriter.h"
#include "map/trackOverlay.h"
#include "tests/device/fakeRegistry.h"
#include "tests/faults/powerCut.h"
#include "tests/faults/soundness.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

namespace {

qint32 storeRun(qint64 number, int points) {
  Batch batch;
  batch.add(number, "run", 3, points);
  return batch.store();
}

void killWhileStoring(Outcome& outcome, int rounds) {
  const StoreFolder folder;
  qint64 stored = 0;
  for (int round = 0; round < rounds; ++round) {
    std::array<int, 2> acknowledged{};
    if (pipe2(acknowledged.data(), O_CLOEXEC) != 0) {
      qFatal("no pipe");
    }
    const pid_t child = inChild([&] {
      for (char number = 1;; ++number) {
        if (storeRun(stored + number, 200) != 1 || write(acknowledged[1], &number, 1) != 1) {
          return 1;
        }
      }
    });
    usleep(useconds_t(chance() % 100000));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(acknowledged[1]);
    std::array<char, 200> numbers{};
    stored += qMax<qint64>(0, read(acknowledged[0], numbers.data(), numbers.size()));
    close(acknowledged[0]);
    outcome.note(problem(folder.database, stored, stored + 1), QString("kill %1").arg(round));
    stored = folder.ask("select count(*) from T_RunData").toLongLong();
    if (stored > 100) {
      stored = dataControl().deleteAllData() == 1 ? 0 : stored;
    }
  }
}

void cutPower(Outcome& outcome, int rounds) {
  const StoreFolder folder;
  recordDisk();
  Disk disk;
  disk.now[folder.database] = disk.safe[folder.database] = bytesOf(folder.database);
  for (int round = 0; round < rounds; ++round) {
    storedRuns += storeRun(round + 1, 20 << round % 6) == 1 ? 1 : 0;
  }
  const QList<DiskOperation> operations = std::exchange(diskOperations(), {});
  const QTemporaryDir after;
  for (qsizetype at = 0; at <= operations.size(); ++at) {
    for (const auto lost : {Disk::Lost::nothing, Disk::Lost::everything, Disk::Lost::anything}) {
      const auto files = disk.afterCut(lost, chance);
      for (const QString name : {"gpsData.db3", "gpsData.db3-journal"}) {
        const QString path = folder.in(name);
        files.contains(path) ? writeBytes(after.filePath(name), files[path])
                             : void(QFile::remove(after.filePath(name)));
      }
      const qint64 stored = at < operations.size() ? operations[at].stored : storedRuns;
      outcome.note(problem(after.filePath("gpsData.db3"), stored, stored + 1),
                   QString("cut before write %1").arg(at));
    }
    if (at < operations.size()) {
      disk.apply(operations[at]);
    }
  }
}

/// A file system of one megabyte that only this process sees; false without the right to mount.
bool mountSmallDisk(const QString& folder) {
  const QByteArray place = QFile::encodeName(folder);
  return unshare(CLONE_NEWNS) == 0 &&
         mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("none", place.constData(), "tmpfs", 0, "size=1m") == 0;
}

void leaveRoom(const QString& folder, qint64 room) {
  const QString filler = folder + "/filler";
  QFile::remove(filler);
  struct statvfs disk {};
  statvfs(QFile::encodeName(folder).constData(), &disk);
  writeBytes(filler, QByteArray(qsizetype(disk.f_bavail * disk.f_bsize) - room, 'f'));
}

/// Each operation with no room, then with a page more, until it succeeds.
void fillDisk(Outcome& outcome, int) {
  constexpr qint64 page = 4096;
  const StoreFolder elsewhere;
  storeRun(7, 100);
  const QByteArray other = bytesOf(elsewhere.database);
  const QTemporaryDir disk;
  if (!mountSmallDisk(disk.path())) {
    std::puts("disk full: skipped, needs root");
    return;
  }
  qputenv("TMPDIR", QFile::encodeName(disk.path()));
  const StoreFolder folder;
  storeRun(1, 100);
  const QByteArray before = bytesOf(folder.database);
  const QString copy = folder.in("copy");
  const QByteArray document(100000, 'x');
  const std::map<QString, std::function<bool()>> operations{
      {"storing", [] { return storeRun(2, 100) == 1; }},
      {"backing up", [&] { return bool(databaseFile::backUp(folder.database, copy)); }},
      {"restoring",
       [&] { return bool(databaseFile::restore(folder.database, elsewhere.database)); }},
      {"exporting", [&] { return writeFileAtomically(copy, document); }}};
  for (const auto& [name, operation] : operations) {
    bool done = false;
    for (qint64 room = 0; !done; room += page) {
      for (const QFileInfo& file : QDir(folder.in("")).entryInfoList(QDir::Files)) {
        QFile::remove(file.filePath());
      }
      writeBytes(folder.database, before);
      leaveRoom(disk.path(), room);
      done = operation();
      const bool added = done && name == "storing";
      const QByteArray expected = name == "exporting" ? document : before;
      QString wrong = problem(folder.database, added ? 2 : 1, added ? 2 : 1);
      if (QFile::exists(copy) != (done && name != "storing" && name != "restoring")) {
        wrong = "half a file";
      } else if (QFile::exists(copy) && bytesOf(copy) != expected) {
        wrong = "another file";
      } else if (!added &&
                 bytesOf(folder.database) != (done && name == "restoring" ? other : before)) {
        wrong = "the database changed";
      }
      outcome.note(wrong, QString("%1 with %2 bytes free").arg(name).arg(room));
    }
  }
  umount2(QFile::encodeName(disk.path()).constData(), MNT_DETACH);
}

/// Everything that reads a database, on one that was changed or cut at random.
void damage(Outcome& outcome, int rounds) {
  const StoreFolder folder;
  for (int number = 1; number <= 3; ++number) {
    storeRun(number, 40);
  }
  const QByteArray whole = bytesOf(folder.database);
  for (int round = 0; round < rounds; ++round) {
    QByteArray bytes = whole;
    const qsizetype at = qsizetype(chance() % size_t(whole.size()));
    round % 4 == 0 ? bytes.truncate(at) : void(bytes[at] = char(chance()));
    writeBytes(folder.database, bytes);
    QElapsedTimer timer;
    timer.start();
    dataControl store;
    for (const runData& run : store.getRunData("ALL", {})) {
      const auto number = qint32(run.T_Cnumber);
      const PointDictionary points = store.getTrackData(number);
      writeTcx(store.getLapData(number), points, number, run.T_RunStartTime, "+09:00");
      writeGpx(points, number, run.T_RunStartTime, "+09:00");
      buildGoogleOverlay(points, number, {});
    }
    store.close_db();
    databaseFile::backUp(folder.database, folder.in("copy"));
    QFile::remove(folder.in("copy"));
    outcome.note(timer.elapsed() > 5000 ? "takes too long" : QString(),
                 QString("byte %1, round %2").arg(at).arg(round));
  }
}

/// One download in this process; what getAllData() answers.
qint32 download(const QString& node, const QString& folder) {
  const auto registry = std::make_shared<FakeRegistry>();
  registry->plugWatch(node);
  const auto session = std::make_shared<WatchSession>();
  const DeviceEnvironment environment{registry, nullptr, 1.0, folder + "/lastDownload.txt"};
  if (!usbOperating::create(environment, session)->linkCommand()) {
    return 99;
  }
  return usbOperating::create(environment, session)->getAllData();
}

/// Unplugging at every 36th byte of a download, then at random ones; a download that then waits for
/// ever is given up. What comes afterwards is a whole download.
void unplug(Outcome& outcome, int rounds) {
  constexpr int runs = 2;
  EmulatedWatchOptions options;
  options.memory = makeMemory({.runs = runs, .pointsPerRun = 5});
  options.fullSpeed = true;
  const qsizetype total = 36 * (options.memory.size() + 1);
  for (int round = 0; round <= total / 36 + rounds; ++round) {
    const qsizetype at = round <= total / 36 ? 36 * round : qsizetype(chance() % size_t(total));
    const StoreFolder folder;
    options.hangUpAfter = at;
    const pid_t child = inChild([&] {
      EmulatedWatch watch(options);
      watch.start();
      std::atomic<int> code{-100};
      std::thread([&] { code = download(watch.path(), folder.in("")); }).detach();
      for (int waits = 0; code == -100 && (watch.isRunning() || waits < 20);
           waits += watch.isRunning() ? 0 : 1) {
        usleep(10000);
      }
      return code == 1 ? 1 : 2;
    });
    const int code = exitOf(child);
    const int expected = code == 1 ? runs : 0;
    outcome.note(code >= 0 ? problem(folder.database, expected, expected) : "a crash",
                 QString("unplugged after %1 bytes").arg(at));
    EmulatedWatch whole({.memory = options.memory, .fullSpeed = true});
    whole.start();
    const qint32 next = download(whole.path(), folder.in(""));
    outcome.note(next == (expected == 0 ? 1 : 88) ? problem(folder.database, runs, runs)
                                                  : QString("code %1").arg(next),
                 QString("the download after %1 bytes").arg(at));
  }
}

/// For the faults that come from outside: `storeFaults download NODE FOLDER` waits to be continued.
int downloadOnce(const QString& node, const QString& folder) {
  setMainBundle({.path = folder + "/Trakko.app", .name = "Trakko"});
  (void)raise(SIGSTOP);
  return download(node, folder);
}

const std::map<QString, std::pair<void (*)(Outcome&, int), const char*>> proofs{
    {"kill", {killWhileStoring, "kill -9 while storing"}},
    {"power", {cutPower, "power cut at every write, three kinds each"}},
    {"full", {fillDisk, "disk full while storing, backing up, restoring, exporting"}},
    {"damage", {damage, "damaged databases read, exported, backed up"}},
    {"unplug", {unplug, "unplugged while downloading, and the download after it"}}};

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules("*=false");
  const QStringList arguments(argv + 1, argv + argc);
  if (arguments.value(0) == "download") {
    return downloadOnce(arguments.value(1), arguments.value(2));
  }
  if (arguments.value(0) == "check") {
    const QString wrong = problem(arguments.value(1), 0, arguments.value(2).toLongLong());
    std::fputs(qPrintable(wrong), stdout);
    return wrong.isNull() ? 0 : 1;
  }
  const auto proof = proofs.find(arguments.value(0));
  if (proof == proofs.end()) {
    return 2;
  }
  Outcome outcome;
  proof->second.first(outcome, arguments.value(1).toInt());
  return outcome.verdict(proof->second.second);
}
