#include "data/databaseFile.h"
#include "data/databaseUse.h"
#include "data/databaseWords.h"
#include "storeFolder.h"
#include "tests/columns.h"

#include <QtTest>

#include <atomic>
#include <future>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using databaseFile::Failure;
using schemaCheck::Finding;

namespace {

constexpr int pointCount = 400;
const QString oldRun = "2014-05-01 07:30:05 400";
const QString newRun = "2014-05-02 07:30:05 400";

thread_local QStringList synced;

/// The start times of the runs stored and how many points are whole, or what is wrong.
QString runsIn(const QString& database) {
  if (!QFile::exists(database)) {
    return "no file";
  }
  const QString check = ask(database, "PRAGMA integrity_check");
  return check != u"ok" ? check
                        : ask(database,
                              "select group_concat(T_RunStartTime)||' '||(select count(*) from "
                              "T_TrackPointData where T_PointTime<>'damaged') from T_RunData");
}

/// Runs `work` in a process of its own, which may be killed in it; true when it was.
template <typename Work>
bool isKilledIn(Work&& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status);
}

const char* const halfATransaction =
    "PRAGMA cache_size=5; begin; delete from T_RunData;"
    "update T_TrackPointData set T_PointTime='damaged'";

/// Leaves the database as a process does that is killed behind the statements.
void killBehind(const char* statements, const QString& database) {
  QVERIFY(isKilledIn([&] {
    const Connection connection = connectTo(database);
    ask(connection.get(), statements);
    raise(SIGKILL);
  }));
  QVERIFY(QFileInfo(database + "-journal").size() + QFileInfo(database + "-wal").size() > 0);
}

/// Gives the database a write-ahead log; the run in it is not in the file itself yet.
void leaveInLog(const QString& database) {
  const QByteArray run = ask(database, "select T_RunStartTime from T_RunData").toLatin1();
  ask(database, "PRAGMA journal_mode=WAL; delete from T_RunData");
  killBehind("insert into T_RunData(T_RunStartTime) values('" + run + "')", database);
}

}  // namespace

// In the place of the system's own, so that what was synced can be told.
extern "C" int fsync(int descriptor) {
  synced << QFile::symLinkTarget("/proc/self/fd/" + QString::number(descriptor));
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}

class tst_databaseFile : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir made_;  // one database with oldRun, one with newRun
  std::unique_ptr<StoreFolder> folder_;
  QString database_;  // holds oldRun
  QString aside_;
  QString earlier_;
  QString backup_;  // holds newRun

  QString in(const QString& name) const { return folder_->in(name); }
  QStringList leftovers() const { return QDir(folder_->directory.path()).entryList({"*.part*"}); }

  /// As the row's name says; other names are statements.
  static void damage(const QString& database) {
    const QByteArray how = QTest::currentDataTag();
    const QString journal = database + "-journal";
    QFile file(database);
    if (how == "garbage" || how == "empty") {
      writeBytes(database, QByteArray(how == "empty" ? 0 : 5000, 'x'));
    } else if (how == "cut") {
      QVERIFY(file.resize(file.size() - 5000));
    } else if (how == "one page") {
      QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(qint64(20) * 4096));
      file.write(QByteArray(4096, 'x'));
    } else if (how == "journal") {
      killBehind(halfATransaction, database);
    } else if (how == "log") {
      leaveInLog(database);
    } else if (how == "write-protected") {
      QVERIFY(file.setPermissions(QFile::ReadOwner));
    } else if (how == "unreadable journal") {
      QVERIFY(QDir().mkdir(journal));
    } else if (how == "only journal") {
      killBehind(halfATransaction, database);
      QVERIFY(file.remove());
    } else if (how == "folder") {
      QVERIFY(file.remove() && QDir().mkdir(database));
    } else if (how == "pipe") {
      QVERIFY(file.remove() && mkfifo(QFile::encodeName(database).constData(), 0600) == 0);
    } else {
      ask(database, how.constData());
    }
  }

 private Q_SLOTS:
  void initTestCase() {
    for (const int number : {1, 2}) {
      const StoreFolder store;
      Batch batch;
      batch.add(number, "n", 0, pointCount);
      QCOMPARE(batch.store(), 1);
      QVERIFY(QFile::copy(store.database, made_.filePath(QString::number(number))));
    }
  }

  void init() {
    folder_ = std::make_unique<StoreFolder>();
    database_ = folder_->database;
    aside_ = in("gpsData-before-restore.db3");
    earlier_ = in("gpsData-before-restore-2.db3");
    backup_ = in("backup.db3");
    QVERIFY(QFile::remove(database_) && QFile::copy(made_.filePath("1"), database_));
    QVERIFY(QFile::copy(made_.filePath("2"), backup_));
    synced.clear();
  }

  void backsUp() {
    killBehind(halfATransaction, database_);
    const QString copy = in("copy.db3");
    chmod(QFile::encodeName(database_).constData(), 0640);
    QVERIFY(databaseFile::backUp(database_, copy));
    QCOMPARE(bytesOf(copy), bytesOf(database_));
    QCOMPARE(runsIn(copy), oldRun);
    QCOMPARE(QFile::permissions(copy), QFile::permissions(database_));
    QVERIFY(synced.contains(copy + ".part") && synced.contains(folder_->directory.path()));

    const QByteArray bytes = QByteArray(1'500'000, 'x') + QByteArray(1'000'000, 'y');
    writeBytes(database_, bytes);  // no database, in several steps
    QVERIFY(databaseFile::backUp(database_, in("bytes.db3")));
    QVERIFY(bytesOf(in("bytes.db3")) == bytes);
  }

  void backsUpOntoNothing_data() {
    const auto row = columns<Failure>("failure");
    for (const char* name : {"backup.db3", "gpsData.db3", "link.db3"}) {
      row(name, Failure::exists);
    }
    row("folder/copy.db3", Failure::unwritable);
  }
  void backsUpOntoNothing() {
    QVERIFY(QFile::link(in("nowhere"), in("link.db3")));
    const QString target = in(QTest::currentDataTag());
    const QByteArray before = bytesOf(target);
    QTEST(databaseFile::backUp(database_, target).failure, "failure");
    QCOMPARE(bytesOf(target), before);
    QCOMPARE(runsIn(database_), oldRun);
    QFile::remove(database_);
    QCOMPARE(databaseFile::backUp(database_, in("copy.db3")).failure, Failure::unreadable);
    QVERIFY(!QFile::exists(database_) && !QFile::exists(in("copy.db3")) && leftovers().isEmpty());
  }

  // No copy holds half a transaction, and none is refused for the copying.
  void backsUpWhileStoring() {
    constexpr int transactions = 20;
    std::atomic<bool> finished = false;
    int stored = 0;
    std::thread writer([&] {
      for (int i = 0; i < transactions; ++i) {
        const QByteArray value = QByteArray::number(i);
        stored += dataControl().inData({"update T_TrackPointData set T_PointHR=" + value});
      }
      finished = true;
    });
    QStringList copies;
    while (!finished) {
      const QString copy = in("copy.db3");
      databaseFile::backUp(database_, copy);
      copies << ask(copy,
                    "PRAGMA integrity_check; select count(distinct T_PointHR), count(*) "
                    "from T_TrackPointData");
      QFile::remove(copy);
    }
    writer.join();
    copies.removeDuplicates();
    QCOMPARE(copies, QStringList(u"ok 1|400"_s));
    QCOMPARE(stored, transactions);
  }

  void restores() {
    dataControl before;  // a download that is under way must touch neither database
    QCOMPARE(before.checkRecord(oldRun.left(19)), 1);
    QVERIFY(databaseFile::restore(database_, backup_));
    QVERIFY(synced.contains(database_ + ".part"));
    QCOMPARE(synced.last(), folder_->directory.path());
    QCOMPARE(before.inData({dataControl::runSqlStr({})}), -1);
    QCOMPARE(bytesOf(database_), bytesOf(backup_));
    QCOMPARE(runsIn(aside_), oldRun);
    QCOMPARE(dataControl().getMaxCnumber("T_RunData"), 2);

    QVERIFY(databaseFile::restore(database_, database_));
    QCOMPARE(runsIn(database_) + runsIn(aside_), newRun + oldRun);

    killBehind(halfATransaction, aside_);
    QVERIFY(databaseFile::restore(database_, aside_));
    QCOMPARE(runsIn(database_) + runsIn(aside_), oldRun + newRun);

    writeBytes(in("text.db3"), "no database");
    QVERIFY(databaseFile::restore(database_, in("text.db3")));
    QCOMPARE(bytesOf(database_), "no database");
    QCOMPARE(runsIn(aside_) + runsIn(earlier_), oldRun + newRun);
    QVERIFY(databaseFile::restore(database_, in("text.db3")));
    QCOMPARE(runsIn(aside_) + runsIn(earlier_), oldRun + newRun);  // those are databases
    writeBytes(database_, "a wreck");
    QVERIFY(databaseFile::restore(database_, earlier_));
    QCOMPARE(runsIn(database_) + runsIn(aside_), newRun + oldRun);
    QCOMPARE(bytesOf(in("gpsData-before-restore-damaged.db3")), "a wreck");
    QVERIFY(leftovers().isEmpty());
  }

  // One wrong file and then the right one: the first database is still there.
  void keepsTwo() {
    QVERIFY(QFile::copy(backup_, in("wrong.db3")));
    ask(in("wrong.db3"), "update T_RunData set T_RunStartTime='wrong'");
    QVERIFY(databaseFile::restore(database_, in("wrong.db3")));
    QVERIFY(databaseFile::restore(database_, in("wrong.db3")));
    killBehind(halfATransaction, aside_);
    for (int i = 0; i < 3; ++i) {  // pressing it again and again pushes nothing out
      const databaseFile::Result restored = databaseFile::restore(database_, backup_);
      QCOMPARE(restored.kept, i == 0 ? aside_ : i == 1 ? QString() : earlier_);
      QCOMPARE(runsIn(database_), newRun);
      QCOMPARE(runsIn(aside_), "wrong 400");
      QCOMPARE(runsIn(earlier_), oldRun);
      QVERIFY(i != 1 || (QFile::remove(database_) && QFile::copy(earlier_, database_)));
    }
    QVERIFY(QFile::setPermissions(earlier_, QFile::ReadOwner));
    QVERIFY(databaseFile::restore(database_, earlier_));
    QCOMPARE(runsIn(database_) + runsIn(earlier_), oldRun + newRun);
    QVERIFY(QFile::permissions(database_).testFlag(QFile::WriteOwner));
  }
  void keepsTheFirstThereAndBack() {
    const QString other = in("other.db3");
    QVERIFY(QFile::copy(backup_, other));
    ask(other, "update T_RunData set T_RunStartTime='other'");
    for (const QString& chosen : {other, backup_, other}) {
      QVERIFY(databaseFile::restore(database_, chosen));
    }
    QCOMPARE(runsIn(aside_) + runsIn(earlier_), newRun + oldRun);
  }

  // Files that something is wrong with: in the place of the database, looked at, chosen.
  void damaged_data() {
    const auto row = columns<QString, Finding, Failure>("kept", "finding", "failure");
    const QString malformed = "database disk image is malformed";
    row("garbage", "file is not a database", Finding::noDatabase, Failure::none);
    row("empty", {}, Finding::tablesMissing, Failure::none);
    row("cut", malformed, Finding::noDatabase, Failure::none);
    row("one page", {}, Finding::noDatabase, Failure::none);
    row("drop table T_LapData", "RUN 400", Finding::tablesMissing, Failure::none);
    row("journal", "RUN 400", Finding::complete, Failure::none);
    row("log", "RUN 400", Finding::complete, Failure::none);
    row("write-protected", "RUN 400", Finding::complete, Failure::none);
    row("unreadable journal", "disk I/O error", Finding::unreadable, Failure::unreadable);
    row("only journal", "no file", Finding::unreadable, Failure::unreadable);
    row("folder", "unable to open database file", Finding::unreadable, Failure::unreadable);
    row("pipe", {}, Finding::unreadable, Failure::unreadable);
  }
  void damaged() {
    QFETCH(QString, kept);
    QFETCH(const Failure, failure);
    damage(database_);
    const databaseFile::Result restored = databaseFile::restore(database_, backup_);
    QVERIFY(restored);
    QCOMPARE(runsIn(database_), newRun);
    QVERIFY(kept.isNull() || runsIn(restored.kept) == kept.replace("RUN", oldRun.left(19)));
    QVERIFY(databaseFile::restore(database_, backup_));
    const QFile::Permissions both = QFile::ReadOwner | QFile::WriteOwner;
    QCOMPARE(QFile::permissions(database_) & both, both);

    init();
    damage(backup_);
    const Finding finding = databaseFile::inspect(backup_);
    QTEST(finding, "finding");
    QCOMPARE(databaseWords::doubtAbout(backup_, finding).isNull(),
             finding == Finding::complete || !QFileInfo(backup_).isFile());
    const QString content = runsIn(backup_);
    QCOMPARE(databaseFile::restore(database_, backup_).failure, failure);
    QCOMPARE(runsIn(database_), failure == Failure::none ? content : oldRun);
    QVERIFY(failure == Failure::none || !QFile::exists(aside_));
    QVERIFY(leftovers().isEmpty());
  }

  void waitsForNobodyHere() {
    const databaseUse::Turn storing = databaseUse::await();
    std::thread([&] {
      QCOMPARE(databaseFile::restore(database_, backup_).failure, Failure::busy);
      QCOMPARE(dataControl().deleteAllData(), -1);
    }).join();
    QCOMPARE(runsIn(database_), oldRun);
  }

  // Another program stores; or it reads and so keeps what was stored later in the log of a database
  // that some program gave one. All at once, as each takes five seconds.
  void waitsForOthers() {
    const Connection writer = connectTo(database_);
    QVERIFY(execute(writer.get(), "begin immediate"));
    ask(backup_, "PRAGMA journal_mode=WAL");
    const Connection reader = connectTo(backup_);
    QVERIFY(execute(reader.get(), "begin; select * from T_RunData"));
    ask(backup_, "delete from T_RunData");
    QVERIFY(QFile::copy(made_.filePath("2"), in("free.db3")));

    auto stored = std::async([] { return dataControl().inData({"delete from T_TrackData"}); });
    auto restored = std::async([&] { return databaseFile::restore(database_, in("free.db3")); });
    auto backedUp = std::async([&] { return databaseFile::backUp(backup_, in("log.db3")); });
    QVERIFY(databaseFile::backUp(database_, in("copy.db3")));
    QCOMPARE(runsIn(in("copy.db3")), oldRun);
    QCOMPARE(restored.get().failure, Failure::busy);
    QCOMPARE(backedUp.get().failure, Failure::busy);
    QVERIFY(!QFile::exists(aside_) && leftovers().isEmpty());
    QVERIFY(execute(writer.get(), "commit"));
    QCOMPARE(stored.get(), 1);  // waits longer than these
  }

  // Killed before each single step: the database is the old or the new one, whole, the old one is
  // there under one of its names, and what was put aside earlier, too; and the restore can be done
  // again.
  void killed_data() {
    const auto row = columns<bool, bool>("journals", "undo");
    row("nothing", false, false);
    row("journals", true, false);
    row("undo", false, true);
  }
  void killed() {
    QFETCH(const bool, journals);
    QFETCH(const bool, undo);
    int step = 0;
    for (bool killed = true; killed; ++step) {
      init();
      QVERIFY(!(undo || journals) || QFile::copy(backup_, aside_));
      if (journals) {
        killBehind(halfATransaction, database_);
        killBehind(halfATransaction, aside_);
      }
      killed = isKilledIn([&] {
        int count = 0;
        databaseFile::restore(database_, undo ? aside_ : backup_, [&](int) {
          if (count++ == step) {
            raise(SIGKILL);
          }
        });
      });
      const QString now = runsIn(database_);
      QVERIFY2(now == newRun || (now == oldRun && killed), qPrintable(now));
      const QStringList kept{now, runsIn(aside_), runsIn(earlier_)};
      QVERIFY2(kept.contains(oldRun), qPrintable(kept.join(' ')));
      QVERIFY2(!(undo || journals) || kept.contains(newRun), qPrintable(kept.join(' ')));
      QVERIFY(databaseFile::restore(database_, backup_));
      QCOMPARE(runsIn(database_), newRun);
      QVERIFY(leftovers().isEmpty());
    }
    QVERIFY(step > 7);
  }

  void fullDisk() {
    {
      const FullDisk full(4096);  // the first page fits
      QCOMPARE(databaseFile::restore(database_, backup_).failure, Failure::unwritable);
      QCOMPARE(databaseFile::backUp(database_, in("copy.db3")).failure, Failure::unwritable);
    }
    QCOMPARE(runsIn(database_), oldRun);
    QVERIFY(!QFile::exists(in("copy.db3")) && leftovers().isEmpty());
    for (int i = 0; i < 100; ++i) {
      QVERIFY(QDir().mkdir(database_ + ".part" + (i == 0 ? QString() : QString::number(i))));
    }
    QCOMPARE(databaseFile::restore(database_, backup_).failure, Failure::leftovers);
  }
};

QTEST_GUILESS_MAIN(tst_databaseFile)
#include "tst_databaseFile.moc"
