// The delete commands of the controller. The store looks through all points for those of a run,
// which takes seconds in a large file: a thread does it, and the window follows.

#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "base/text.h"
#include "data/dataControl.h"
#include "data/databaseUse.h"

#include <QScopeGuard>

#include <memory>
#include <utility>

void TrakkoAppDelegate::deleteOneData() {
  // While the question stands, a download may end and choose another run.
  const qint64 number = currentNumber;
  if (!mayDelete() || runViewData.empty() || number <= 0 ||
      !context_.dialogs->confirmErase(QStringLiteral("このデータを消去しますか？"))) {
    return;
  }
  startDelete([number](dataControl& store) { return store.deleteOneData(number); },
              [this, number](qint32 result) { oneDeleted(number, result); });
}

void TrakkoAppDelegate::deleteAllData() {
  if (!mayDelete() || runViewData.empty() ||
      !context_.dialogs->confirmErase(QStringLiteral("全てのデータを消去しますか？"))) {
    return;
  }
  startDelete([](dataControl& store) { return store.deleteAllData(); },
              [this](qint32 result) { allDeleted(result); });
}

// A second delete, or a backup that holds the file, would make one of the two fail; so would a
// download that is just being stored.
bool TrakkoAppDelegate::mayDelete() {
  if (fileWorkRuns()) {
    return false;
  }
  const bool isFree = databaseUse::ifFree().owns_lock();
  if (!isFree) {
    showStatus(QStringLiteral("ランを保存しています。終わるまでお待ち下さい。"));
  }
  return isFree;
}

void TrakkoAppDelegate::startDelete(std::function<qint32(dataControl&)> work,
                                    std::function<void(qint32)> done) {
  showStatus(QStringLiteral("消去しています..."), Verdict::progress);
  fileWorkRuns_ = detachThread("delete", [this, work = std::move(work), done = std::move(done)] {
    const auto result = std::make_shared<qint32>(-1);
    const auto atAnyEnd = qScopeGuard([&] {
      performOnMainThread([this, result, done] {
        fileWorkRuns_ = false;
        done(*result);
      });
    });
    dataControl store;
    *result = work(store);
  });
}

void TrakkoAppDelegate::oneDeleted(qint64 number, qint32 result) {
  // Another delete or a download may have changed what is shown meanwhile.
  if (runViewData.size() <= 1 && text::toInteger(runKArr.value(0)) == number) {
    allDeleted(result);
    return;
  }
  reportDeletion(result);
  forgetLoads();  // they may bring the deleted run
  mainQueue::post([this] { startRefreshOfNewData(); });
  getNewData = 1;
}

void TrakkoAppDelegate::allDeleted(qint32 result) {
  reportDeletion(result);
  currentNumber = 0;
  clearTables();
}

void TrakkoAppDelegate::reportDeletion(qint32 result) {
  if (result == 1) {
    showStatus(QStringLiteral("消去しました。"), Verdict::done);
  } else {
    showStatus(QStringLiteral("データベースから消去できませんでした。"), Verdict::failure);
  }
}
