#include "data/databaseFile.h"
#include "storeFolder.h"

#include <QtTest>

#include <atomic>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using databaseFile::Failure;

namespace {

const QString oldRun = "2014-05-01 07:30:05";
const QString newRun = "2014-05-02 07:30:05";

/// The start times of the runs stored, or what is wrong with the database.
QString runsIn(const QString& database) {
  if (!QFile::exists(database)) {
    return "no file";
  }
  const QString check = ask(database, "PRAGMA integrity_check");
  return check == u"ok" ? ask(database, "select T_RunStartTime from T_RunData") : check;
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
    "PRAGMA cache_size=200; begin; delete from T_RunData;"
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

}  // namespace

class DatabaseFileTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir made;  // one database with oldRun, one with newRun
  std::unique_ptr<StoreFolder> folder;
  QString database;  // holds oldRun
  QString aside;
  QString backup;  // holds newRun

  QStringList leftovers() const { return QDir(folder->directory.path()).entryList({"*.part*"}); }

 private Q_SLOTS:
  void initTestCase() {
    for (const int number : {1, 2}) {
      const StoreFolder store;
      Batch batch;
      batch.add(number, "n", 0, 4000);  // so that a database takes several steps to copy
      QCOMPARE(batch.store(), 1);
      QVERIFY(QFile::copy(store.database, made.filePath(QString::number(number))));
    }
  }

  void init() {
    folder = std::make_unique<StoreFolder>();
    database = folder->database;
    aside = folder->in("gpsData-before-restore.db3");
    backup = folder->in("backup.db3");
    QVERIFY(QFile::remove(database) && QFile::copy(made.filePath("1"), database));
    QVERIFY(QFile::copy(made.filePath("2"), backup));
  }

  void backsUp() {
    killBehind(halfATransaction, database);
    const QString copy = folder->in("copy.db3");
    chmod(QFile::encodeName(database).constData(), 0600);
    QVERIFY(databaseFile::backUp(database, copy));
    QCOMPARE(bytesOf(copy), bytesOf(database));
    QCOMPARE(runsIn(copy), oldRun);
    QCOMPARE(QFile::permissions(copy), QFile::permissions(database));

    writeBytes(database, "no database at all");
    QVERIFY(databaseFile::backUp(database, folder->in("bytes.db3")));
    QCOMPARE(bytesOf(folder->in("bytes.db3")), "no database at all");
  }

  void backsUpOntoNothing() {
    QVERIFY(QFile::link(folder->in("nowhere"), folder->in("link.db3")));
    for (const char* name : {"backup.db3", "gpsData.db3", "link.db3", "folder/copy.db3"}) {
      const bool exists = name != std::string_view("folder/copy.db3");
      const QByteArray before = bytesOf(folder->in(name));
      const databaseFile::Result result = databaseFile::backUp(database, folder->in(name));
      QVERIFY2(result.failure == (exists ? Failure::exists : Failure::unwritable), name);
      QVERIFY(!result.detail.isEmpty());
      QCOMPARE(bytesOf(folder->in(name)), before);
    }
    QCOMPARE(runsIn(database), oldRun);
    QFile::remove(database);
    const QString copy = folder->in("copy.db3");
    QCOMPARE(databaseFile::backUp(database, copy).failure, Failure::unreadable);
    QVERIFY(!QFile::exists(database) && !QFile::exists(copy) && leftovers().isEmpty());
  }

  // No copy holds half a transaction, and none is refused for the copying.
  void backsUpWhileStoring() {
    constexpr int transactions = 60;
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
      const QString copy = folder->in("copy.db3");
      databaseFile::backUp(database, copy);
      copies << ask(copy,
                    "PRAGMA integrity_check; select count(distinct T_PointHR), count(*) "
                    "from T_TrackPointData");
      QFile::remove(copy);
    }
    writer.join();
    copies.removeDuplicates();
    QCOMPARE(copies, QStringList(u"ok 1|4000"_s));
    QCOMPARE(stored, transactions);
  }

  void restores() {
    dataControl before;  // a download that is under way must touch neither database
    QCOMPARE(before.checkRecord(oldRun), 1);
    QVERIFY(databaseFile::restore(database, backup));
    QCOMPARE(before.inData({dataControl::runSqlStr({})}), -1);
    QCOMPARE(bytesOf(database), bytesOf(backup));
    QCOMPARE(runsIn(aside), oldRun);
    QCOMPARE(dataControl().getMaxCnumber("T_RunData"), 2);

    QVERIFY(databaseFile::restore(database, database));
    QCOMPARE(runsIn(database), newRun);
    QCOMPARE(runsIn(aside), oldRun);

    QVERIFY(databaseFile::restore(database, aside));
    QCOMPARE(runsIn(database), oldRun);
    QCOMPARE(runsIn(aside), newRun);

    writeBytes(folder->in("text.db3"), "no database");
    QVERIFY(databaseFile::restore(database, folder->in("text.db3")));
    QCOMPARE(bytesOf(database), "no database");
    QCOMPARE(runsIn(aside), oldRun);
    QVERIFY(databaseFile::restore(database, folder->in("text.db3")));
    QCOMPARE(runsIn(aside), oldRun);  // still the one that is a database
    QVERIFY(databaseFile::restore(database, aside));
    QCOMPARE(runsIn(database), oldRun);
    QCOMPARE(leftovers(), QStringList());
  }

  void restoresOverDamage() {
    const QList<std::pair<QByteArray, QString>> rows{{"garbage", "file is not a database"},
                                                     {"empty", "no such table: T_RunData"},
                                                     {"missing", "no file"},
                                                     {"journal", oldRun},
                                                     {"log", oldRun}};
    for (const auto& [damage, kept] : rows) {
      init();
      if (damage == "garbage" || damage == "empty") {
        writeBytes(database, QByteArray(damage == "empty" ? 0 : 5000, 'x'));
      } else if (damage == "log") {
        ask(database, "PRAGMA journal_mode=WAL; delete from T_RunData");
        killBehind("insert into T_RunData(T_RunStartTime) values('2014-05-01 07:30:05')", database);
      } else {
        killBehind(halfATransaction, database);
        QVERIFY(damage == "journal" || QFile::remove(database));
      }
      QVERIFY2(databaseFile::restore(database, backup), damage.constData());
      QCOMPARE(QStringList({damage, runsIn(database), runsIn(aside)}),
               QStringList({damage, newRun, kept}));
    }
  }

  void keepsTheOldOne() {
    QVERIFY(QDir(folder->directory.path()).mkdir("folder.db3"));
    QCOMPARE(mkfifo(QFile::encodeName(folder->in("pipe.db3")).constData(), 0600), 0);
    for (const char* chosen : {"missing.db3", "folder.db3", "pipe.db3"}) {
      QCOMPARE(databaseFile::restore(database, folder->in(chosen)).failure, Failure::unreadable);
    }
    const Connection writer = connectTo(database);
    QVERIFY(execute(writer.get(), "begin immediate"));
    QCOMPARE(databaseFile::restore(database, backup).failure, Failure::busy);
    QVERIFY(databaseFile::backUp(database, folder->in("copy.db3")));
    QCOMPARE(runsIn(folder->in("copy.db3")), oldRun);
    QCOMPARE(runsIn(database), oldRun);
    QVERIFY(!QFile::exists(aside) && leftovers().isEmpty());
  }

  // A reader keeps what was stored later in the log of a database that some program gave one.
  void logThatCannotBeMerged() {
    ask(database, "PRAGMA journal_mode=WAL");
    const Connection reader = connectTo(database);
    QVERIFY(execute(reader.get(), "begin; select * from T_RunData"));
    ask(database, "delete from T_RunData");
    QCOMPARE(databaseFile::backUp(database, folder->in("copy.db3")).failure, Failure::busy);
  }

  // Killed before each single step: the database is the old or the new one, whole, and the old one
  // is there under one of its names, the new one too when it was put aside; and the restore can be
  // done again.
  void killed() {
    enum class Given { nothing, journals, undo };
    for (const Given given : {Given::nothing, Given::journals, Given::undo}) {
      int step = 0;
      for (bool killed = true; killed; ++step) {
        init();
        QVERIFY(given == Given::nothing || QFile::copy(backup, aside));
        if (given == Given::journals) {
          killBehind(halfATransaction, database);
          killBehind(halfATransaction, aside);
        }
        killed = isKilledIn([&] {
          int count = 0;
          databaseFile::restore(database, given == Given::undo ? aside : backup, [&] {
            if (count++ == step) {
              raise(SIGKILL);
            }
          });
        });
        const QString now = runsIn(database);
        QVERIFY2(now == newRun || (now == oldRun && killed), qPrintable(now));
        QVERIFY(now == oldRun || runsIn(aside) == oldRun);
        QVERIFY(now == newRun || given != Given::undo || runsIn(aside) == newRun);
        QVERIFY(databaseFile::restore(database, backup));
        QCOMPARE(runsIn(database), newRun);
        QCOMPARE(leftovers(), QStringList());
      }
      QVERIFY(step > 8);
    }
  }

  void fullDisk() {
    for (const rlim_t room : {0, 4096, 1 << 20}) {  // nothing, the first page or part fits
      {
        const FullDisk full(room);
        QCOMPARE(databaseFile::restore(database, backup).failure, Failure::unwritable);
        QCOMPARE(databaseFile::backUp(database, folder->in("copy.db3")).failure,
                 Failure::unwritable);
      }
      QCOMPARE(runsIn(database), oldRun);
      QVERIFY(!QFile::exists(folder->in("copy.db3")) && leftovers().isEmpty());
    }
  }
};

QTEST_GUILESS_MAIN(DatabaseFileTest)
#include "tst_databaseFile.moc"
