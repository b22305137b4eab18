// The delete commands of the controller.

#include "app/TrakkoAppDelegate.h"
#include "base/mainQueue.h"
#include "data/dataControl.h"

void TrakkoAppDelegate::deleteOneData() {
  // While the question stands, a download may end and choose another run.
  const qint64 number = currentNumber;
  if (runViewData.empty() || number <= 0 ||
      !context_.dialogs->confirmErase(QStringLiteral("このデータを消去しますか？"))) {
    return;
  }
  const qint32 result = dataControl().deleteOneData(number);
  reportDeletion(result);
  if (runViewData.size() <= 1) {
    currentNumber = 0;
    clearTables();
    return;
  }
  mainQueue::post([this] { startRefreshOfNewData(); });
  getNewData = 1;
}

void TrakkoAppDelegate::deleteAllData() {
  if (runViewData.empty() ||
      !context_.dialogs->confirmErase(QStringLiteral("全てのデータを消去しますか？"))) {
    return;
  }
  reportDeletion(dataControl().deleteAllData());
  currentNumber = 0;
  clearTables();
}

void TrakkoAppDelegate::reportDeletion(qint32 result) {
  showStatus(result == 1 ? QStringLiteral("消去しました。")
                         : QStringLiteral("データベースから消去できませんでした。"));
}
