#include "app/singleInstance.h"
#include "tests/columns.h"

#include <QtTest>

#include <atomic>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

using Claim = SingleInstance::Claim;
using State = DatabaseLock::State;

class tst_singleInstance : public QObject {
  Q_OBJECT

  const QTemporaryDir places_;

 private Q_SLOTS:
  void initTestCase() { qputenv("TMPDIR", QFile::encodeName(places_.path())); }
  // A socket would stay behind when the process is killed.
  void cleanupTestCase() {
    const auto all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    QCOMPARE(QDir(places_.path()).entryList(all), QStringList());
  }

  static void furtherStartsRaiseTheFirst() {
    const QTemporaryDir folder;
    const QString name = folder.path() + "/";
    const QString otherName = name + "../" + folder.path().section('/', -1) + "/";
    {
      SingleInstance first(name);
      QCOMPARE(first.claim(), Claim::granted);
      QSignalSpy raised(&first, &SingleInstance::raiseRequested);
      std::atomic<int> passedOn{0};
      std::vector<std::thread> starts;  // each as another process would be
      starts.reserve(5);
      for (int i = 0; i < 5; ++i) {
        starts.emplace_back([&, i] {
          SingleInstance further(i == 0 ? otherName : name);
          passedOn += further.claim() == Claim::passedOn ? 1 : 0;
        });
      }
      QTRY_COMPARE(raised.size(), 5);
      QTRY_COMPARE(passedOn, 5);
      for (std::thread& start : starts) {
        start.join();
      }
      const QTemporaryDir other;
      QCOMPARE(SingleInstance(other.path() + "/").claim(), Claim::granted);
    }
    QCOMPARE(SingleInstance(name).claim(), Claim::granted);
  }

  static void silentFirst() {
    const QTemporaryDir folder;
    DatabaseLock held(folder.path() + "/");
    QCOMPARE(held.take(), State::held);
    QCOMPARE(SingleInstance(folder.path() + "/").claim(), Claim::unanswered);
    QCOMPARE(SingleInstance("/nowhere/at/all/").claim(), Claim::unprotected);
  }

  static void endingFirst() {
    const QTemporaryDir folder;
    auto held = std::make_unique<DatabaseLock>(folder.path() + "/");
    QCOMPARE(held->take(), State::held);
    std::thread end([&] {
      QThread::msleep(300);
      held.reset();
    });
    QCOMPARE(SingleInstance(folder.path() + "/").claim(), Claim::granted);
    end.join();
  }

  // Whatever lies where a lock file could.
  static void locks_data() {
    const auto row = columns<bool, uid_t>("isFolder", "user");
    row("nothing", false, 0);
    row("folder", true, 0);
    row("another user", false, 65534);
  }
  void locks() {
    QFETCH(const bool, isFolder);
    QFETCH(const uid_t, user);
    const QTemporaryDir folder;
    for (const QTemporaryDir* opened : {&places_, &folder}) {
      chmod(QFile::encodeName(opened->path()).constData(), 0755);
    }
    QVERIFY(!isFolder || QDir(folder.path()).mkdir("gpsData.lock"));
    DatabaseLock first(folder.path() + "/");
    QCOMPARE(first.take(), State::held);
    const uid_t self = geteuid();
    QCOMPARE(seteuid(self == 0 ? user : self), 0);
    const State second = DatabaseLock(folder.path() + "/").take();
    QCOMPARE(seteuid(self), 0);
    QCOMPARE(second, State::taken);
  }
};

QTEST_GUILESS_MAIN(tst_singleInstance)
#include "tst_singleInstance.moc"
