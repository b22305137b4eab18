// The delete commands of the controller. The store looks through all points for those of a run,
// which takes seconds in a large file: a thread does it, and the window follows.

#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "base/text.h"
#include "data/dataControl.h"

void TrakkoAppDelegate::deleteOneData() {
  // While the question stands, a download may end and choose another run.
  const qint64 number = currentNumber;
  if (fileWorkRuns() || runViewData.empty() || number <= 0 ||
      !context_.dialogs->confirmErase(QStringLiteral("このデータを消去しますか？"))) {
    return;
  }
  showStatus(QStringLiteral("消去しています..."), Verdict::progress);
  detachThread("delete", [this, number] {
    const qint32 result = dataControl().deleteOneData(number);
    performOnMainThread([this, number, result] { oneDeleted(number, result); });
  });
}

void TrakkoAppDelegate::deleteAllData() {
  if (fileWorkRuns() || runViewData.empty() ||
      !context_.dialogs->confirmErase(QStringLiteral("全てのデータを消去しますか？"))) {
    return;
  }
  showStatus(QStringLiteral("消去しています..."), Verdict::progress);
  detachThread("delete", [this] {
    const qint32 result = dataControl().deleteAllData();
    performOnMainThread([this, result] { allDeleted(result); });
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
