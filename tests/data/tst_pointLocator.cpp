#include "data/fileState.h"
#include "data/pointLocator.h"
#include "storeFolder.h"
#include "tests/columns.h"

#include <QtTest>

/// Reading only where a run's points lie must answer what reading everything answers.
class tst_pointLocator : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void sameAnswer_data() {
    const auto row = columns<QByteArray, QByteArray, bool>("before", "after", "known");
    const QByteArray shuffle =
        "update T_TrackPointData set ID=-ID; update T_TrackPointData set ID=1000+ID*37%101;";
    // As a stranger's program may leave them: of other kinds in the column of whole numbers.
    const QByteArray kinds =
        "create table other as select * from T_TrackPointData;"
        "insert into other(ID,T_PointTime,T_Setid,T_Cnumber) values(-5,'a',7,'5'),(900,'b',8,5.0),"
        "(901,'c',9,'50e-1'),(902,'d',10,' 5 '),(903,'e',11,5.5),(904,'f',12,'x'),(905,'g',13,x'35'),"
        "(906,'h',14,null);"
        "create table kept as select sql from sqlite_master where name='T_TrackPointData';"
        "drop table T_TrackPointData; create table T_TrackPointData(ID INTEGER PRIMARY KEY "
        "AUTOINCREMENT,a,b,c,d,e,f,g,h,i,j,k,l,m,n,o);"
        "insert into T_TrackPointData select * from other; PRAGMA writable_schema=on;"
        "update sqlite_master set sql=(select sql from kept) where name='T_TrackPointData';";
    const QByteArray farPoint =
        "insert into T_TrackPointData(ID,T_PointTime,T_Setid,T_Cnumber) values(9999,'far',99,5);";
    row("as stored", "", "", true);
    row("apart", shuffle, "", true);
    row("other kinds", kinds, "", true);
    row("other table", "alter table T_TrackPointData rename column T_PointCal to b", "", false);
    row("stored since", "", farPoint, false);
    row("deleted since", "", "delete from T_TrackPointData where T_Setid=2", false);
    row("log", "", "PRAGMA journal_mode=wal;" + farPoint, false);
    row("log before", "PRAGMA journal_mode=wal", farPoint, false);
  }
  static void sameAnswer() {
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, after);
    const StoreFolder folder;
    Batch batch;
    for (const int number : {4, 5, 6}) {
      batch.add(number, "n", 2, 5);
    }
    QCOMPARE(batch.store(), 1);
    folder.ask("update T_TrackPointData set T_PointTime=ID");
    folder.ask(before);
    pointLocator::locate(folder.database);
    const Connection other = connectTo(folder.database);  // keeps a log beside the file
    ask(other.get(), after.constData());
    compare(folder, {4, 5, 6, 7});
    dataControl data;
    const Reading reading(data.db);
    QTEST(pointLocator::rangeOf(data.db, pointLocator::Table::points, 5).has_value(), "known");
  }

  // The file in the place may be another one since, with as many transactions behind it.
  static void replacedFile() {
    const StoreFolder folder;
    Batch batch;
    batch.add(5, "n", 1, 3);
    QCOMPARE(batch.store(), 1);
    const QByteArray old = bytesOf(folder.database);
    folder.ask("update T_TrackPointData set ID=ID+50");
    writeBytes(folder.in("new"), old);
    ask(folder.in("new"), "update T_TrackPointData set ID=ID+70");
    QVERIFY(pointLocator::locate(folder.database));
    dataControl opened;
    QCOMPARE(std::rename(folder.in("new").toUtf8(), folder.database.toUtf8()), 0);
    compare(folder, {5});
    QCOMPARE(opened.getTrackData(5).size(), 3);  // still reads the old one
  }

  // What a transaction of the same object has not committed yet counts as well.
  static void insideATransaction() {
    const StoreFolder folder;
    Batch batch;
    batch.add(5, "n", 1, 3);
    QCOMPARE(batch.store(), 1);
    QVERIFY(pointLocator::locate(folder.database));
    dataControl data;
    data.deleteRecord("begin; insert into T_TrackPointData(T_Setid,T_Cnumber) values(4,5)");
    QCOMPARE(data.getTrackData(5).size(), 4);
  }

 private:
  static void compare(const StoreFolder& folder, const QList<qint32>& numbers) {
    for (const qint32 number : numbers) {
      QStringList times;
      for (const trackPointData& point : dataControl().getTrackData(number)) {
        times << point.T_PointTime;
      }
      times.sort();
      const QByteArray of = " where T_Cnumber=" + QByteArray::number(number);
      QCOMPARE(times.join(' '),
               folder.ask("select T_PointTime from T_TrackPointData" + of + " order by 1"));
      QCOMPARE(QString::number(dataControl().getLapData(number).size()),
               folder.ask("select count(*) from T_LapData" + of));
    }
  }
};

QTEST_GUILESS_MAIN(tst_pointLocator)
#include "tst_pointLocator.moc"
