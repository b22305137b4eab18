#include "storeFolder.h"

#include <QtTest>
#include <array>
#include <atomic>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

/// What the store does when the database cannot be used as it should.
class StoreFailuresTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void deadAfterMakingTheTables();
  static void unusablePlaces_data();
  static void unusablePlaces();
  static void readOnlyFile();
  static void rollback();
  static void otherWriter();
  static void otherReader();
  static void fullDisk();
  static void noRoomForTheTables();
  static void killedWhileStoring();
  static void manyAtOnce();
};

namespace {

Batch oneRun(int points = 3) {
  Batch batch;
  batch.add(1, u"n"_s, 1, points);
  return batch;
}

void verifyDead(dataControl& data) {
  QVERIFY(data.db != nullptr);
  QCOMPARE(data.open_db(), data.db);
  QVERIFY(data.getRunData(u"ALL"_s, QString()).isEmpty());
  QVERIFY(data.getLapData(1).isEmpty());
  QVERIFY(data.getTrackData(1).isEmpty());
  QCOMPARE(data.GetTrackName(1), u""_s);
  QCOMPARE(data.getRunDataTF(u"2014-05-01"_s), 0);
  QCOMPARE(data.checkRecord(u"x"_s), -1);
  QCOMPARE(data.getMaxCnumber(u"T_RunData"_s), 0);
  data.deleteRecord(u"delete from T_RunData"_s);
  QVERIFY(data.db != nullptr);
}

/// Root may write anything; for the life of this, the process is somebody else.
struct AsNobody {
  AsNobody() { become(geteuid() == 0 ? 65534 : geteuid()); }
  ~AsNobody() { become(getuid()); }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

  static void become(uid_t user) {
    if (seteuid(user) != 0) {
      qFatal("cannot change the user");
    }
  }
};

}  // namespace

void StoreFailuresTest::deadAfterMakingTheTables() {
  const StoreFolder folder;
  QFile::remove(folder.database);
  dataControl data;
  QCOMPARE(folder.counts(), u"0|0|0|0"_s);
  verifyDead(data);
  QCOMPARE(data.close_db(), SQLITE_MISUSE);
  QCOMPARE(data.close_db(), -1);
  QCOMPARE(data.getMaxCnumber(u"T_RunData"_s), 0);
  QCOMPARE(oneRun().store(data), 1);
  QVERIFY(data.getRunData(u"ALL"_s, QString()).isEmpty());  // storing has closed the connection

  QFile::remove(folder.database);
  dataControl another;
  QCOMPARE(oneRun().store(another), -1);
  QCOMPARE(another.db, nullptr);
  QCOMPARE(oneRun().store(another), 1);
  QCOMPARE(dataControl().getRunData(u"ALL"_s, QString()).size(), 1);
}

void StoreFailuresTest::unusablePlaces_data() {
  QTest::addColumn<QString>("bundle");
  QTest::newRow("missing folder") << u"/nowhere/at/all/Trakko.app"_s;
  QTest::newRow("no database") << QString();
  QTest::newRow("no path") << u"app"_s;
}

void StoreFailuresTest::unusablePlaces() {
  QFETCH(QString, bundle);
  const StoreFolder folder;
  if (bundle.isEmpty()) {
    QFile file(folder.database);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(5000, 'x')) == 5000);
  } else {
    setMainBundle({.path = bundle, .name = u"Trakko"_s});
  }
  dataControl data;
  if (bundle == u"app") {
    QCOMPARE(data.db, nullptr);
    QCOMPARE(data.close_db(), -1);
  } else if (bundle.isEmpty()) {
    verifyDead(data);
  }
  QCOMPARE(oneRun().store(data), -1);
  QCOMPARE(data.deleteOneData(1), -1);
  QCOMPARE(data.deleteAllData(), -1);
  if (bundle.isEmpty()) {
    QFile file(folder.database);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == QByteArray(5000, 'x'));
  }
}

void StoreFailuresTest::readOnlyFile() {
  const StoreFolder folder;
  QCOMPARE(oneRun().store(), 1);
  chmod(QFile::encodeName(folder.database).constData(), 0444);
  chmod(QFile::encodeName(folder.directory.path()).constData(), 0555);
  {
    const AsNobody unprivileged;
    Batch second;
    second.add(2, u"n"_s, 0, 0);
    QCOMPARE(second.store(), -1);
    QCOMPARE(dataControl().deleteAllData(), -1);
    QCOMPARE(dataControl().getRunData(u"ALL"_s, QString()).size(), 1);
  }
  chmod(QFile::encodeName(folder.directory.path()).constData(), 0755);
}

void StoreFailuresTest::rollback() {
  const StoreFolder folder;
  const QByteArray wrong = "Insert Into T_RunData (T_RunName) Values ('O'Brien');";
  QTest::ignoreMessage(QtWarningMsg, wrong.constData());
  QTest::ignoreMessage(QtInfoMsg, "rollback ok");
  QCOMPARE(dataControl().inData({dataControl::runSqlStr({}), dataControl::lapSqlStr({}), wrong,
                                 dataControl::runSqlStr({})}),
           -1);
  QCOMPARE(folder.counts(), u"0|0|0|0"_s);

  const quint32 before = folder.commits();
  dataControl data;
  QCOMPARE(data.inData({}), -1);
  QVERIFY(data.db != nullptr);  // nothing was done, not even closed
  QCOMPARE(folder.commits(), before);
}

// Storing waits for a writer that comes to an end.
void StoreFailuresTest::otherWriter() {
  const StoreFolder folder;
  const Connection other = folder.connect();
  QVERIFY(execute(other.get(), "begin exclusive transaction; insert into T_RunData(ID) values(9)"));
  std::thread ending([&] {
    QThread::msleep(200);
    execute(other.get(), "commit");
  });
  dataControl data;  // the probe waits, too
  QCOMPARE(oneRun().store(data), 1);
  ending.join();
  QCOMPARE(folder.counts(), u"2|1|0|3"_s);
}

// A reader that never ends lets everything happen but the commit.
void StoreFailuresTest::otherReader() {
  const StoreFolder folder;
  Connection other = folder.connect();
  QVERIFY(execute(other.get(), "begin transaction; select * from T_RunData"));
  QTest::ignoreMessage(QtWarningMsg, "commit transaction;");
  QCOMPARE(oneRun().store(), -1);
  QCOMPARE(dataControl().getRunData(u"ALL"_s, QString()).size(), 0);
  other.reset();
  QCOMPARE(oneRun().store(), 1);
}

void StoreFailuresTest::fullDisk() {
  const StoreFolder folder;
  QCOMPARE(oneRun().store(), 1);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit little{.rlim_cur = 100000, .rlim_max = before.rlim_max};
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &little);
  const qint32 inMemory = oneRun(1000).store();  // fails at the commit
  const qint32 spilled = oneRun(9000).store();   // fails before
  setrlimit(RLIMIT_FSIZE, &before);
  QCOMPARE(inMemory, -1);
  QCOMPARE(spilled, -1);
  QCOMPARE(folder.counts(), u"1|1|0|3"_s);
  QCOMPARE(folder.ask("PRAGMA integrity_check"), QStringList(u"ok"_s));
}

// Some of the tables would pass for all of them at every later start.
void StoreFailuresTest::noRoomForTheTables() {
  const StoreFolder folder;
  QFile::remove(folder.database);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit little{.rlim_cur = 14000, .rlim_max = before.rlim_max};  // three pages
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &little);
  { const dataControl data; }
  setrlimit(RLIMIT_FSIZE, &before);
  { const dataControl data; }
  QCOMPARE(oneRun().store(), 1);
  QCOMPARE(folder.counts(), u"1|1|0|3"_s);
}

void StoreFailuresTest::killedWhileStoring() {
  const StoreFolder folder;
  constexpr int points =
      9000;  // more than the page cache holds, so the file changes before the end
  const QString journal = folder.database + "-journal";
  int interrupted = 0;
  for (int round = 0; round < 8; ++round) {
    const pid_t child = fork();
    if (child == 0) {
      for (int number = round * 100 + 1;; ++number) {
        Batch batch;
        batch.add(number, u"n"_s, 1, points);
        batch.store();
      }
    }
    // Let it store a run, then end it while the next one is half in the file.
    const quint32 before = folder.commits();
    QTRY_VERIFY(folder.commits() > before + 1);  // the counter is written before its commit is over
    QTRY_VERIFY(QFileInfo(journal).size() > 0);
    QTest::qWait(round * 3);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    interrupted += QFileInfo(journal).size() > 0 ? 1 : 0;

    QCOMPARE(folder.ask("PRAGMA integrity_check"), QStringList(u"ok"_s));
    QVERIFY(dataControl().getRunData(u"ALL"_s, QString()).size() > round);
    QCOMPARE(folder.ask("select distinct count(*) from T_TrackPointData group by T_Cnumber"),
             QStringList(QString::number(points)));
    QCOMPARE(folder.ask("select T_Cnumber from T_RunData order by 1"),
             folder.ask("select distinct T_Cnumber from T_TrackPointData order by 1"));
  }
  QVERIFY(interrupted > 0);
}

// The calendar and the tables read on threads of their own while a download is stored.
void StoreFailuresTest::manyAtOnce() {
  const StoreFolder folder;
  std::atomic<bool> stored = false;
  std::array<std::thread, 3> readers;
  for (std::thread& reader : readers) {
    reader = std::thread([&] {
      while (!stored) {
        dataControl data;
        data.getRunDataTF(u"2014-05-01"_s);
        const RunDictionary runs = data.getRunData(u"ALL"_s, QString());
        for (const runData& run : runs) {
          if (data.getTrackData(static_cast<qint32>(run.T_Cnumber)).size() != 200) {
            qFatal("part of a run is visible");
          }
        }
      }
    });
  }
  Batch batch;
  for (int number = 1; number <= 25; ++number) {
    batch.add(number, u"n"_s, 1, 200);
  }
  const qint32 result = batch.store();
  stored = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
  QCOMPARE(result, 1);
  QCOMPARE(folder.counts(), u"25|25|0|5000"_s);
}

QTEST_GUILESS_MAIN(StoreFailuresTest)
#include "tst_storeFailures.moc"
