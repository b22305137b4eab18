#include "data/bundle.h"
#include "data/dataControl.h"
#include "data/databaseFile.h"

#include <QTemporaryDir>
#include <QtTest>
#include <atomic>
#include <csignal>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using databaseFile::Failure;

namespace {

const QString oldRun = u"2014-05-01 07:30:00"_s;
const QString newRun = u"2015-06-02 08:40:00"_s;
constexpr qint64 pointsPerRun = 4000;  // so that a database takes several steps to copy

dataControl::Statements runStatements(const QString& start, qint64 number) {
  runData run;
  run.T_RunStartTime = start;
  run.T_Cnumber = number;
  dataControl::Statements result{dataControl::runSqlStr(run)};
  trackPointData point;
  point.T_PointLongitude = QString(300, u'x');
  point.T_Cnumber = number;
  for (point.T_Setid = 1; point.T_Setid <= pointsPerRun; ++point.T_Setid) {
    result.push_back(dataControl::trackPointSqlStr(point));
  }
  return result;
}

int execute(const QString& database, const QByteArray& sql) {
  sqlite3* connection = nullptr;
  sqlite3_open(QFile::encodeName(database).constData(), &connection);
  const int result = sqlite3_exec(connection, sql.constData(), nullptr, nullptr, nullptr);
  sqlite3_close(connection);
  return result;
}

/// What the database answers; the last line wins.
QString ask(const QString& database, const QByteArray& sql) {
  QString answer;
  sqlite3* connection = nullptr;
  sqlite3_open(QFile::encodeName(database).constData(), &connection);
  const auto keep = [](void* target, int, char** values, char**) {
    *static_cast<QString*>(target) = QString::fromUtf8(values[0]);
    return 0;
  };
  if (sqlite3_exec(connection, sql.constData(), keep, &answer, nullptr) != SQLITE_OK) {
    answer = QString::fromUtf8(sqlite3_errmsg(connection));
  }
  sqlite3_close(connection);
  return answer;
}

/// The start times of the runs stored, or what is wrong with the database.
QString runsIn(const QString& database) {
  if (!QFile::exists(database)) {
    return u"no file"_s;
  }
  const QString check = ask(database, "PRAGMA integrity_check");
  return check == u"ok" ? ask(database, "select group_concat(T_RunStartTime) from T_RunData")
                        : check;
}

QByteArray bytesOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void writeBytes(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
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

/// Leaves the database as a process does that is killed while it changes every point.
void killWhileWriting(const QString& database) {
  QVERIFY(isKilledIn([&] {
    sqlite3* connection = nullptr;
    sqlite3_open(QFile::encodeName(database).constData(), &connection);
    sqlite3_exec(connection,
                 "PRAGMA cache_size=5; begin; delete from T_RunData;"
                 "update T_TrackPointData set T_PointLongitude='damaged'",
                 nullptr, nullptr, nullptr);
    raise(SIGKILL);
  }));
  QVERIFY(QFileInfo(database + u"-journal"_s).size() > 0);
}

}  // namespace

class DatabaseFileTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<QTemporaryDir> folder;
  QString database;
  QString aside;
  QString backup;  // holds newRun

  QString in(const QString& name) const { return folder->filePath(name); }
  QStringList leftovers() const { return QDir(folder->path()).entryList({u"*.part*"_s}); }
  void makeDatabase(const QString& run) const {
    QFile::remove(database);
    { const dataControl tables; }
    QCOMPARE(dataControl().inData(runStatements(run, 1)), 1);
  }

 private Q_SLOTS:
  void init();
  void backsUp();
  void backsUpOntoNothing_data();
  void backsUpOntoNothing();
  void backsUpWithoutDatabase();
  void backsUpWhileRunsAreStored();
  void restores();
  void restoresOverDamage_data();
  void restoresOverDamage();
  void keepsTheOldOne_data();
  void keepsTheOldOne();
  void waitsForWriters();
  void logThatCannotBeMerged();
  void laterWritersFail();
  void killed_data();
  void killed();
  void fullDisk_data();
  void fullDisk();
};

void DatabaseFileTest::init() {
  folder = std::make_unique<QTemporaryDir>();
  setMainBundle({in(u"Trakko.app"_s), u"Trakko"_s});
  database = in(u"gpsData.db3"_s);
  aside = in(u"gpsData-before-restore.db3"_s);
  backup = in(u"backup.db3"_s);
  makeDatabase(newRun);
  QVERIFY(QFile::rename(database, backup));
  makeDatabase(oldRun);
}

void DatabaseFileTest::backsUp() {
  killWhileWriting(database);
  const QString copy = in(u"copy.db3"_s);
  chmod(QFile::encodeName(database).constData(), 0600);
  QVERIFY(databaseFile::backUp(database, copy));
  QCOMPARE(bytesOf(copy), bytesOf(database));
  QCOMPARE(runsIn(copy), oldRun);
  QCOMPARE(QFile::permissions(copy), QFile::permissions(database));

  writeBytes(database, "no database at all");
  QVERIFY(databaseFile::backUp(database, in(u"bytes.db3"_s)));
  QCOMPARE(bytesOf(in(u"bytes.db3"_s)), "no database at all");
}

void DatabaseFileTest::backsUpOntoNothing_data() {
  QTest::addColumn<QString>("target");
  QTest::addColumn<Failure>("failure");
  QTest::newRow("existing file") << u"backup.db3"_s << Failure::exists;
  QTest::newRow("the database itself") << u"gpsData.db3"_s << Failure::exists;
  QTest::newRow("link to nowhere") << u"link.db3"_s << Failure::exists;
  QTest::newRow("no such folder") << u"folder/copy.db3"_s << Failure::unwritable;
}

void DatabaseFileTest::backsUpOntoNothing() {
  QFETCH(QString, target);
  QVERIFY(QFile::link(in(u"nowhere"_s), in(u"link.db3"_s)));
  const QByteArray before = bytesOf(in(target));
  const databaseFile::Result result = databaseFile::backUp(database, in(target));
  QTEST(result.failure, "failure");
  QVERIFY(!databaseFile::reason(result.failure).isEmpty() && !result.detail.isEmpty());
  QCOMPARE(bytesOf(in(target)), before);
  QCOMPARE(leftovers(), QStringList());
  QCOMPARE(runsIn(database), oldRun);
}

void DatabaseFileTest::backsUpWithoutDatabase() {
  QFile::remove(database);
  QCOMPARE(databaseFile::backUp(database, in(u"copy.db3"_s)).failure, Failure::unreadable);
  QVERIFY(!QFile::exists(database) && !QFile::exists(in(u"copy.db3"_s)));
}

// Every copy holds whole runs only, and no run is refused for the copying.
void DatabaseFileTest::backsUpWhileRunsAreStored() {
  constexpr int runs = 10;
  std::atomic<int> stored = 0;
  std::atomic<bool> finished = false;
  std::thread writer([&] {
    for (int i = 0; i < runs; ++i) {
      stored += dataControl().inData(runStatements(QString::number(i), 2 + i)) == 1 ? 1 : 0;
    }
    finished = true;
  });
  int copies = 0;
  QStringList damaged;
  while (!finished || copies == 0) {
    const QString copy = in(u"copy%1.db3"_s.arg(++copies));
    databaseFile::backUp(database, copy);
    const QString check = ask(copy, "PRAGMA integrity_check");
    const QString partial =
        ask(copy,
            "select count(*) from (select 1 from T_TrackPointData group by T_Cnumber having "
            "count(*) <> 4000)");
    if (check != u"ok" || partial != u"0") {
      damaged.append(check + partial);
    }
    QFile::remove(copy);
  }
  writer.join();
  QCOMPARE(damaged, QStringList());
  QCOMPARE(stored, runs);
}

void DatabaseFileTest::restores() {
  QVERIFY(databaseFile::restore(database, backup));
  QCOMPARE(bytesOf(database), bytesOf(backup));
  QCOMPARE(runsIn(database), newRun);
  QCOMPARE(runsIn(aside), oldRun);
  QCOMPARE(dataControl().getMaxCnumber(u"T_RunData"_s), 1);

  QVERIFY(databaseFile::restore(database, database));
  QCOMPARE(runsIn(database), newRun);
  QCOMPARE(runsIn(aside), oldRun);

  QVERIFY(databaseFile::restore(database, aside));
  QCOMPARE(runsIn(database), oldRun);
  QCOMPARE(runsIn(aside), newRun);

  writeBytes(in(u"text.db3"_s), "no database");
  QVERIFY(databaseFile::restore(database, in(u"text.db3"_s)));
  QCOMPARE(bytesOf(database), "no database");
  QCOMPARE(runsIn(aside), oldRun);
  QVERIFY(databaseFile::restore(database, in(u"text.db3"_s)));  // keeps the one that is a database
  QCOMPARE(runsIn(aside), oldRun);
  QVERIFY(databaseFile::restore(database, aside));
  QCOMPARE(runsIn(database), oldRun);
  QCOMPARE(leftovers(), QStringList());
}

void DatabaseFileTest::restoresOverDamage_data() {
  QTest::addColumn<QString>("damage");
  QTest::addColumn<QString>("kept");
  QTest::newRow("no database") << u"garbage"_s << u"file is not a database"_s;
  QTest::newRow("empty") << u"empty"_s << u"no such table: T_RunData"_s;
  QTest::newRow("missing, with an orphaned journal") << u"missing"_s << u"no file"_s;
  QTest::newRow("journal of a killed process") << u"journal"_s << oldRun;
  QTest::newRow("write-ahead log of a killed process") << u"log"_s << oldRun;
}

void DatabaseFileTest::restoresOverDamage() {
  QFETCH(QString, damage);
  if (damage == u"garbage") {
    writeBytes(database, QByteArray(5000, 'x'));
  } else if (damage == u"empty") {
    writeBytes(database, {});
  } else if (damage == u"journal" || damage == u"missing") {
    killWhileWriting(database);
    QVERIFY(damage == u"journal" || QFile::remove(database));
  } else {
    QCOMPARE(execute(database, "PRAGMA journal_mode=WAL; delete from T_RunData"), SQLITE_OK);
    QVERIFY(isKilledIn([&] {
      sqlite3* connection = nullptr;
      sqlite3_open(QFile::encodeName(database).constData(), &connection);
      const QByteArray run = runStatements(oldRun, 1).front();
      sqlite3_exec(connection, run.constData(), nullptr, nullptr, nullptr);
      raise(SIGKILL);
    }));
    QVERIFY(QFileInfo(database + u"-wal"_s).size() > 0);
  }
  QVERIFY(databaseFile::restore(database, backup));
  QCOMPARE(bytesOf(database), bytesOf(backup));
  QCOMPARE(runsIn(database), newRun);
  QTEST(runsIn(aside), "kept");
}

void DatabaseFileTest::keepsTheOldOne_data() {
  QTest::addColumn<QString>("chosen");
  QTest::newRow("missing") << u"missing.db3"_s;
  QTest::newRow("folder") << u"folder.db3"_s;
  QTest::newRow("pipe") << u"pipe.db3"_s;
}

void DatabaseFileTest::keepsTheOldOne() {
  QFETCH(QString, chosen);
  QVERIFY(QDir(folder->path()).mkdir(u"folder.db3"_s));
  QCOMPARE(mkfifo(QFile::encodeName(in(u"pipe.db3"_s)).constData(), 0600), 0);
  QCOMPARE(databaseFile::restore(database, in(chosen)).failure, Failure::unreadable);
  QCOMPARE(runsIn(database), oldRun);
  QVERIFY(!QFile::exists(aside));
  QCOMPARE(leftovers(), QStringList());
}

void DatabaseFileTest::waitsForWriters() {
  sqlite3* writer = nullptr;
  sqlite3_open(QFile::encodeName(database).constData(), &writer);
  sqlite3_exec(writer, "begin immediate", nullptr, nullptr, nullptr);
  QCOMPARE(databaseFile::restore(database, backup).failure, Failure::busy);
  QVERIFY(databaseFile::backUp(database, in(u"copy.db3"_s)));
  sqlite3_close(writer);
  QCOMPARE(runsIn(database), oldRun);
  QCOMPARE(runsIn(in(u"copy.db3"_s)), oldRun);
  QVERIFY(!QFile::exists(aside));
}

// A reader keeps what was stored later in the log of a database that some program gave one.
void DatabaseFileTest::logThatCannotBeMerged() {
  QCOMPARE(execute(database, "PRAGMA journal_mode=WAL"), SQLITE_OK);
  sqlite3* reader = nullptr;
  sqlite3_open(QFile::encodeName(database).constData(), &reader);
  sqlite3_exec(reader, "begin; select * from T_RunData", nullptr, nullptr, nullptr);
  QCOMPARE(execute(database, "delete from T_RunData"), SQLITE_OK);
  QCOMPARE(databaseFile::backUp(database, in(u"copy.db3"_s)).failure, Failure::busy);
  sqlite3_close(reader);
}

// A download that was under way before the restore must touch neither database.
void DatabaseFileTest::laterWritersFail() {
  dataControl before;
  QCOMPARE(before.checkRecord(oldRun), 1);
  QVERIFY(databaseFile::restore(database, backup));
  QCOMPARE(before.inData(runStatements(u"later"_s, 2)), -1);
  QCOMPARE(runsIn(database), newRun);
  QCOMPARE(runsIn(aside), oldRun);
  QVERIFY(!QFile::exists(database + u"-journal"_s));
  QCOMPARE(dataControl().inData(runStatements(u"later"_s, 2)), 1);
}

void DatabaseFileTest::killed_data() {
  QTest::addColumn<bool>("journal");
  QTest::addColumn<bool>("keptBefore");
  QTest::addColumn<bool>("undo");
  QTest::newRow("first restore") << false << false << false;
  QTest::newRow("with an older database kept") << false << true << false;
  QTest::newRow("with a journal") << true << false << false;
  QTest::newRow("undo") << false << true << true;
}

// Killed before each single step: the database is the old or the new one, whole, and the old one is
// there under one of its names, the new one too when it was put aside; and the restore can be done
// again.
void DatabaseFileTest::killed() {
  QFETCH(bool, journal);
  QFETCH(bool, keptBefore);
  QFETCH(bool, undo);
  int step = 0;
  for (bool killed = true; killed; ++step) {
    init();
    if (keptBefore) {
      QVERIFY(databaseFile::restore(database, backup));
      QVERIFY(databaseFile::restore(database, aside));
    }
    const QString chosen = undo ? aside : backup;
    if (journal) {
      killWhileWriting(database);
    }
    killed = isKilledIn([&] {
      int count = 0;
      databaseFile::restore(database, chosen, [&] {
        if (count++ == step) {
          raise(SIGKILL);
        }
      });
    });
    const QString now = runsIn(database);
    QVERIFY2(now == oldRun || now == newRun, qPrintable(now));
    QVERIFY2(killed || now == newRun, qPrintable(now));
    QVERIFY(now == oldRun || runsIn(aside) == oldRun);
    QVERIFY(!undo || now == newRun || runsIn(aside) == newRun);
    QVERIFY(databaseFile::restore(database, backup));
    QCOMPARE(runsIn(database), newRun);
    QCOMPARE(leftovers(), QStringList());
  }
  QVERIFY(step > 8);
}

void DatabaseFileTest::fullDisk_data() {
  QTest::addColumn<rlim_t>("room");
  QTest::newRow("nothing fits") << rlim_t(0);
  QTest::newRow("first page fits") << rlim_t(4096);
  QTest::newRow("first part fits") << rlim_t(1U << 20U);
}

void DatabaseFileTest::fullDisk() {
  QFETCH(rlim_t, room);
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit full{room, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  const Failure restoring = databaseFile::restore(database, backup).failure;
  const Failure backingUp = databaseFile::backUp(database, in(u"copy.db3"_s)).failure;
  setrlimit(RLIMIT_FSIZE, &limit);
  QCOMPARE(restoring, Failure::unwritable);
  QCOMPARE(backingUp, Failure::unwritable);
  QCOMPARE(runsIn(database), oldRun);
  QVERIFY(!QFile::exists(in(u"copy.db3"_s)));
  QCOMPARE(leftovers(), QStringList());
}

QTEST_GUILESS_MAIN(DatabaseFileTest)
#include "tst_databaseFile.moc"
