#include "data/databaseFile.h"
#include "data/pointLocator.h"
#include "data/schemaCheck.h"
#include "storeFolder.h"
#include "tests/columns.h"

#include <QtTest>

#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

Batch oneRun(int points = 3) {
  Batch batch;
  batch.add(1, "n", 1, points);
  return batch;
}

void verifyDead(dataControl& data) {
  QVERIFY(data.db != nullptr);
  QCOMPARE(data.open_db(), data.db);
  QVERIFY(data.getRunData("ALL", {}).isEmpty());
  QVERIFY(data.getLapData(1).isEmpty() && data.getTrackData(1).isEmpty());
  QCOMPARE(data.GetTrackName(1), "");
  QCOMPARE(data.getRunDataTF("2014-05-01"), 0);
  QCOMPARE(data.checkRecord("x"), -1);
  QCOMPARE(data.getMaxCnumber("T_RunData"), 0);
}

}  // namespace

/// What the store does when the database cannot be used as it should.
class tst_storeFailures : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void deadAfterMakingTheTables() {
    const StoreFolder folder;
    QFile::remove(folder.database);
    dataControl data;
    QCOMPARE(folder.counts(), "0|0|0|0");
    verifyDead(data);
    QVERIFY(!data.queryFailed);  // the store is empty indeed
    QCOMPARE(data.close_db(), SQLITE_MISUSE);
    QCOMPARE(data.close_db(), -1);
    QCOMPARE(oneRun().store(data), 1);
    QVERIFY(data.getRunData("ALL", {}).isEmpty());  // storing has closed the connection

    QFile::remove(folder.database);
    dataControl another;
    QCOMPARE(oneRun().store(another), -1);
    QCOMPARE(another.db, nullptr);
    QCOMPARE(oneRun().store(another), 1);
    QCOMPARE(dataControl().getRunData("ALL", {}).size(), 1);
  }

  static void unusablePlaces() {
    const StoreFolder folder;
    writeBytes(folder.database, QByteArray(5000, 'x'));
    dataControl noDatabase;
    verifyDead(noDatabase);
    QVERIFY(noDatabase.queryFailed);
    QCOMPARE(oneRun().store(), -1);
    QCOMPARE(bytesOf(folder.database), QByteArray(5000, 'x'));

    for (const char* path : {"/nowhere/at/all/Trakko.app", "app"}) {
      setMainBundle({.path = path, .name = "Trakko"});
      dataControl data;
      QCOMPARE(data.db == nullptr, *path == 'a');
      QCOMPARE(oneRun().store(data), -1);
      QCOMPARE(data.deleteOneData(1), -1);
      QCOMPARE(data.deleteAllData(), -1);
    }
  }

  // A restored file may hold more than tables: nothing in it runs, and the store comes back.
  static void strangersSchema_data() {
    using schemaCheck::Finding;
    const auto row = columns<QByteArray, Finding, qint32>("sql", "finding", "stored");
    const QByteArray endless =
        "drop table T_RunData; create view T_RunData as with recursive r(i) as "
        "(select 1 union all select i+1 from r) select i ID,i T_RunStartTime from r";
    row("as made", "", Finding::complete, 1);
    row("more", "alter table T_LapData add note; create table mine(a)", Finding::complete, 1);
    row("trigger", "create trigger t after insert on T_RunData begin delete from T_RunData; end",
        Finding::complete, 1);
    row("view", endless, Finding::tablesMissing, -1);
    row("computed",
        "alter table T_LapData drop T_LapDsc; alter table T_LapData drop T_Cnumber;"
        "alter table T_LapData add T_LapDsc as (1); alter table T_LapData add T_Cnumber",
        Finding::tablesMissing, -1);
    row("computed behind", "alter table T_TrackData add b as (hex(zeroblob(400000000)))",
        Finding::tablesMissing, 1);
    row("virtual", "drop table T_TrackData; create virtual table T_TrackData using fts4(a)",
        Finding::tablesMissing, 1);
    row("missing table", "drop table T_TrackData", Finding::tablesMissing, 1);
    row("missing column", "alter table T_RunData drop T_IdNumber", Finding::tablesMissing, -1);
    row("other order", "alter table T_RunData drop T_RunName;alter table T_RunData add T_RunName",
        Finding::tablesMissing, 1);
  }
  static void strangersSchema() {
    QFETCH(const QByteArray, sql);
    const StoreFolder folder;
    QCOMPARE(folder.ask(sql.constData()), "");
    QTEST(schemaCheck::check(folder.database), "finding");
    dataControl data;
    data.getRunData("ALL", {});
    data.getRunDataTF("2014-05-01");
    QTEST(oneRun().store(), "stored");
    QTEST(dataControl().getRunData("ALL", {}).isEmpty() ? -1 : 1, "stored");
  }

  // A pipe in the place of a journal would be waited for for ever.
  static void pipeBeside() {
    const StoreFolder folder;
    QCOMPARE(oneRun().store(), 1);
    QCOMPARE(mkfifo(QFile::encodeName(folder.database + "-journal").constData(), 0600), 0);
    dataControl data;
    QVERIFY(data.getRunData("ALL", {}).isEmpty() && data.queryFailed);
    QVERIFY(!pointLocator::locate(folder.database));
    QCOMPARE(schemaCheck::check(folder.database), schemaCheck::Finding::unreadable);
    QCOMPARE(databaseFile::inspect(folder.database), schemaCheck::Finding::unreadable);
  }

  // A destroyed page must not pass for runs without points, nor the numbers that it hid for free.
  static void damagedPages_data() {
    const auto row = columns<bool>("known");
    row("T_TrackPointData", true);
    row("T_RunData", false);
    row("the last points", true);
  }
  static void damagedPages() {
    const QByteArray table = QTest::currentDataTag();
    const StoreFolder folder;
    QCOMPARE(oneRun(100).store(), 1);
    const int root =
        folder.ask("select rootpage from sqlite_master where name='" + table + '\'').toInt();
    QByteArray bytes = bytesOf(folder.database);
    const qsizetype page = root > 0 ? root : bytes.size() / 4096;
    writeBytes(folder.database, bytes.replace((page - 1) * 4096, 4096, QByteArray(4096, '\xff')));
    dataControl data;
    QVERIFY(data.getTrackData(1).isEmpty());
    QVERIFY(data.queryFailed);
    data.close_db();
    const bool known = data.getMaxCnumber("T_RunData") == 1;
    QTEST(known, "known");
    QVERIFY(known || oneRun().store(data) == -1);
  }

  static void readOnlyFile() {
    const StoreFolder folder;
    QCOMPARE(oneRun().store(), 1);
    chmod(QFile::encodeName(folder.database).constData(), 0444);
    chmod(QFile::encodeName(folder.directory.path()).constData(), 0555);
    const uid_t user = geteuid();
    QCOMPARE(seteuid(user == 0 ? 65534 : user), 0);  // root may write anything
    const qint32 stored = oneRun().store();
    const qint32 deleted = dataControl().deleteAllData();
    const qsizetype found = dataControl().getRunData("ALL", {}).size();
    QCOMPARE(seteuid(user), 0);
    chmod(QFile::encodeName(folder.directory.path()).constData(), 0755);
    QCOMPARE(stored, -1);
    QCOMPARE(deleted, -1);
    QCOMPARE(found, 1);
  }

  static void rollback() {
    const StoreFolder folder;
    const quint32 before = folder.commits();
    dataControl data;
    QCOMPARE(data.inData({}), -1);
    QVERIFY(data.db != nullptr);  // nothing was done, not even closed
    const QByteArray wrong = "Insert Into T_RunData (T_RunName) Values ('O'Brien');";
    QTest::ignoreMessage(QtWarningMsg, wrong.constData());
    QTest::ignoreMessage(QtInfoMsg, "rollback ok");
    const QByteArray run = dataControl::runSqlStr({});
    QCOMPARE(data.inData({run, dataControl::lapSqlStr({}), wrong, run}), -1);
    QCOMPARE(data.db, nullptr);
    QCOMPARE(folder.counts(), "0|0|0|0");
    QCOMPARE(folder.commits(), before);
  }

  // Storing waits for a writer that comes to an end.
  static void otherWriter() {
    const StoreFolder folder;
    const Connection other = connectTo(folder.database);
    QVERIFY(execute(other.get(), "begin exclusive; insert into T_RunData(ID) values(9)"));
    std::thread ending([&] {
      QThread::msleep(200);
      execute(other.get(), "commit");
    });
    dataControl data;  // the probe waits, too
    QCOMPARE(oneRun().store(data), 1);
    ending.join();
    QCOMPARE(folder.counts(), "2|1|0|3");
  }

  static void fullDisk() {
    const StoreFolder folder;
    QCOMPARE(oneRun().store(), 1);
    {
      const FullDisk full(100000);
      QCOMPARE(oneRun(1000).store(), -1);  // fails at the commit
      QCOMPARE(oneRun(9000).store(), -1);  // fails before
    }
    QCOMPARE(folder.counts(), "1|1|0|3");
    QCOMPARE(folder.ask("PRAGMA integrity_check"), "ok");
  }

  // Some of the tables would pass for all of them at every later start.
  static void noRoomForTheTables() {
    const StoreFolder folder;
    QFile::remove(folder.database);
    {
      const FullDisk full(14000);  // three pages
      const dataControl data;
    }
    { const dataControl data; }
    QCOMPARE(oneRun().store(), 1);
    QCOMPARE(folder.counts(), "1|1|0|3");
  }
};

QTEST_GUILESS_MAIN(tst_storeFailures)
#include "tst_storeFailures.moc"
