#include "app/singleInstance.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

class TestSingleInstance : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void secondStartRaisesTheFirst();
  void onlyOneOfManyWins();
  void foldersAreIndependent();
  void missingFolderIsNoObstacle();
  void lockFileOfAnotherUser();
};

void TestSingleInstance::secondStartRaisesTheFirst() {
  QTemporaryDir folder;
  auto first = std::make_unique<SingleInstance>(folder.path() + "/");
  QVERIFY(first->claim());
  QSignalSpy raised(first.get(), &SingleInstance::raiseRequested);
  // Another name of the same folder; on another thread, as another process would be.
  bool claimed = true;
  std::thread([&] {
    claimed = SingleInstance(folder.path() + "/../" + folder.path().section('/', -1) + "/").claim();
  }).join();
  QVERIFY(!claimed);
  QTRY_COMPARE(raised.size(), 1);
  first.reset();
  SingleInstance next(folder.path() + "/");
  QVERIFY(next.claim());
}

void TestSingleInstance::onlyOneOfManyWins() {
  QTemporaryDir folder;
  SingleInstance owner(folder.path() + "/");
  QVERIFY(owner.claim());
  QSignalSpy raised(&owner, &SingleInstance::raiseRequested);
  std::atomic<int> winners{0};
  std::vector<std::thread> starts;
  for (int i = 0; i < 5; ++i) {
    starts.emplace_back([&] { winners += SingleInstance(folder.path() + "/").claim() ? 1 : 0; });
  }
  QTRY_COMPARE(raised.size(), 5);
  for (std::thread& start : starts) {
    start.join();
  }
  QCOMPARE(winners, 0);
}

void TestSingleInstance::foldersAreIndependent() {
  QTemporaryDir one;
  QTemporaryDir other;
  SingleInstance first(one.path() + "/");
  SingleInstance second(other.path() + "/");
  QVERIFY(first.claim());
  QVERIFY(second.claim());
}

void TestSingleInstance::missingFolderIsNoObstacle() {
  SingleInstance instance("/nowhere/at/all/");
  QVERIFY(instance.claim());
}

void TestSingleInstance::lockFileOfAnotherUser() {
  QTemporaryDir folder;
  SingleInstance owner(folder.path() + "/");
  QVERIFY(owner.claim());
  chmod(QFile::encodeName(folder.path()).constData(), 0755);
  chmod(QFile::encodeName(folder.filePath("gpsData.lock")).constData(), 0444);
  const uid_t user = geteuid();
  QCOMPARE(seteuid(user == 0 ? 65534 : user), 0);  // root may write anything
  const bool claimed = SingleInstance(folder.path() + "/").claim();
  QCOMPARE(seteuid(user), 0);
  QVERIFY(!claimed);
}

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleInstance.moc"
