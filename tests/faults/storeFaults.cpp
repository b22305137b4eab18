// What faults leave of the database. `storeFaults PROOF ROUNDS` prints a line of the table and ends
// with 0 when nothing that was acknowledged is lost and nothing is half there.

#include "base/detachThread.h"
#include "data/databaseFile.h"
#include "device/watchDownload.h"
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
#include <QRegularExpression>
#include <QScopeGuard>

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

constexpr int watchRuns = 2;

EmulatedWatchOptions smallWatch() {
  return {.memory = makeMemory({.runs = watchRuns, .pointsPerRun = 5}), .fullSpeed = true};
}

/// One download in this process as the program makes it; given up when its line is lost.
DownloadOutcome download(const QString& node, const StoreFolder& folder, double answerLimit = 5.0) {
  const auto registry = std::make_shared<FakeRegistry>();
  registry->plugWatch(node);
  WatchDownload* self = nullptr;
  WatchDownload download({registry, nullptr, answerLimit, folder.in("lastDownload.txt")},
                         [&self](auto progress) { progress.stalled ? self->cancel() : void(); });
  self = &download;
  return download.run();
}

/// What comes after a fault is a whole download.
void noteNext(Outcome& outcome, const StoreFolder& folder, const QString& where) {
  EmulatedWatch watch(smallWatch());
  watch.start();
  const qint32 code = download(watch.path(), folder).code;
  const bool whole = code == downloadResult::stored || code == downloadResult::noRunCompleted;
  outcome.note(
      whole ? problem(folder.database, watchRuns, watchRuns) : QString("code %1").arg(code),
      "the download after " + where);
}

/// Unplugging at every 36th byte of a download, then at random ones. All in this process, in which
/// nothing may stay behind.
void unplug(Outcome& outcome, int rounds) {
  EmulatedWatchOptions options = smallWatch();
  // Compared from the second round on: the first thread may bring one of the run-time library.
  const auto inUse = [] {
    while (detachedThreadCount() > 0) {
      usleep(1000);
    }
    return std::pair(QDir("/proc/self/task").count(), QDir("/proc/self/fd").count());
  };
  auto before = inUse();
  const qsizetype blocks = options.memory.size() + 1;
  for (int round = 0; round <= blocks + rounds; ++round) {
    before = round == 1 ? inUse() : before;
    options.hangUpAfter = round <= blocks ? 36 * qint64{round} : qint64(chance() % (36 * blocks));
    const QString where = QString("unplugging at byte %1").arg(*options.hangUpAfter);
    const StoreFolder folder;
    EmulatedWatch watch(options);
    watch.start();
    const bool stored = download(watch.path(), folder, 0.3).code == downloadResult::stored;
    const int expected = stored ? watchRuns : 0;
    outcome.note(problem(folder.database, expected, expected), where);
    noteNext(outcome, folder, where);
  }
  outcome.note(inUse() == before ? QString() : "left behind", "threads and descriptors");
}

/// Begins when it is continued, on a thread of its own as in the program; a hang is ended by the
/// alarm. The exit code is how many runs were acknowledged.
int downloadWhenContinued(const QString& node, const StoreFolder& folder) {
  (void)raise(SIGSTOP);
  alarm(10);
  int acknowledged = 0;
  std::atomic<bool> ended{false};
  const bool started = detachThread("download", [&] {
    const auto atAnyEnd = qScopeGuard([&ended] { ended = true; });
    const DownloadOutcome outcome = download(node, folder, 1.0);
    acknowledged = outcome.code == downloadResult::stored ? int(outcome.runsStored()) : 0;
  });
  while (started && !ended) {
    usleep(1000);
  }
  return acknowledged;
}

/// A download under strace, which comes to it when it stands still, so that no call before it
/// counts. How many runs it acknowledged, -1 after a crash or a hang.
int traced(const StoreFolder& folder, const QString& injection) {
  EmulatedWatch watch(smallWatch());
  watch.start();
  const pid_t child = inChild([&] { return downloadWhenContinued(watch.path(), folder); });
  waitpid(child, nullptr, WUNTRACED);
  const pid_t tracer = inChild([&] {
    return execlp("strace", "strace", "-f", "-qq", "-o", qPrintable(folder.in("trace")), "-e",
                  qPrintable(injection), "-p", qPrintable(QString::number(child)), nullptr);
  });
  const QString status = QString("/proc/%1/status").arg(child);
  while (bytesOf(status).contains("TracerPid:\t0\n") && waitpid(tracer, nullptr, WNOHANG) == 0) {
    usleep(1000);
  }
  kill(child, SIGCONT);
  const int acknowledged = exitOf(child);
  waitpid(tracer, nullptr, 0);
  return acknowledged;
}

/// Each call that can fail, each time that a thread makes it.
QStringList injectionsFor(const QByteArray& trace) {
  static const QRegularExpression call(
      "^\\d+ +(?!futex|exit|rt_sig|rseq|set_robust_list|sched_yield|munmap|restart|clock_|get)"
      "(\\w+)\\(",
      QRegularExpression::MultilineOption);
  static const QHash<QString, QString> errors{{"pwrite64", "ENOSPC"}, {"mmap", "ENOMEM"},
                                              {"brk", "ENOMEM"},      {"mprotect", "ENOMEM"},
                                              {"clone3", "EAGAIN"},   {"openat", "EMFILE"}};
  QHash<QString, int> ofThread;
  QHash<QString, int> most;
  QStringList injections;
  for (auto found = call.globalMatch(QString::fromLatin1(trace)); found.hasNext();) {
    const QRegularExpressionMatch made = found.next();
    const QString name = made.captured(1);
    if (++ofThread[made.captured()] > most[name]) {
      injections << QString("inject=%1:error=%2:when=%3")
                        .arg(name, errors.value(name, "EIO"))
                        .arg(++most[name]);
    }
  }
  return injections;
}

/// Without a fault first, then with each; of two processes each takes every second one. The tables
/// are made as well.
void failCalls(Outcome& outcome, int part) {
  QStringList injections{"trace=all"};
  for (qsizetype i = 0; i < injections.size(); i += i == 0 ? 1 + part : 2) {
    const StoreFolder folder;
    QFile::remove(folder.database);
    const int acknowledged = traced(folder, injections[i]);
    const int least = i == 0 ? watchRuns : acknowledged;
    outcome.note(
        acknowledged < 0 ? "a crash or a hang" : problem(folder.database, least, watchRuns),
        injections[i]);
    noteNext(outcome, folder, injections[i]);
    injections += i == 0 ? injectionsFor(bytesOf(folder.in("trace"))) : QStringList();
  }
}

const std::map<QString, std::pair<void (*)(Outcome&, int), const char*>> proofs{
    {"kill", {killWhileStoring, "kill -9 while storing"}},
    {"power", {cutPower, "power cut at every write, three kinds each"}},
    {"full", {fillDisk, "disk full while storing, backing up, restoring, exporting"}},
    {"damage", {damage, "damaged databases read, exported, backed up"}},
    {"unplug", {unplug, "unplugged while downloading, and the download after it"}},
    {"calls", {failCalls, "a system call of a download failing, and the download after it"}}};

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules("*=false");
  const QStringList arguments(argv + 1, argv + argc);
  const auto proof = proofs.find(arguments.value(0));
  if (proof == proofs.end()) {
    return 2;
  }
  Outcome outcome;
  proof->second.first(outcome, arguments.value(1).toInt());
  return outcome.verdict(proof->second.second);
}
