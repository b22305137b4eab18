// The download of the controller, from the button to the refreshed tables.

#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"

#include <QFileInfo>
#include <QProgressBar>
#include <QScopeGuard>

#include <thread>

namespace {

/// What the user is told of a result code; null when nothing.
QString messageFor(qint32 code) {
  switch (code) {
    case 2:
      return QStringLiteral("データが見当たりません、USBの接続を確認して下さい。");
    case 3:
      return QStringLiteral("ダウンロードがブロックされましたUSB接続を確認して下さい。");
    case 4:
      return QStringLiteral("データがありません。");
    case 5:
      return QStringLiteral("データエラー、再度データをダウンロードして下さい。");
    default:
      return {};
  }
}

/// One line that says what was seen of a watch that could not be reached.
QString lineFor(LinkObstacle obstacle) {
  switch (obstacle) {
    case LinkObstacle::none:
      return QStringLiteral("時計に接続できませんでした。");
    case LinkObstacle::noDevice:
      return QStringLiteral("時計のUSBデバイスが見つかりません。ケーブルの接続を確認して下さい。");
    case LinkObstacle::noSerialPort:
      return QStringLiteral(
          "時計のUSBデバイスはありますが、シリアルポートがありません。接続し直して下さい。");
    case LinkObstacle::noPermission:
      return QStringLiteral(
          "シリアルポートを使う権限がありません。ユーザーを dialout グループに追加して下さい。");
    case LinkObstacle::portInUse:
      return QStringLiteral("シリアルポートは他のプログラムまたは別のダウンロードが使用中です。");
    case LinkObstacle::otherError:
      break;
  }
  return QStringLiteral("シリアルポートを開けませんでした。詳細はログを確認して下さい。");
}

/// What became of the received lines of a download that did not reach the database as a whole.
QString lineForKept(const usbOperating& usb) {
  if (!usb.lastingPath.isNull()) {
    return QStringLiteral("受信したデータは「%1」に残してあります。")
        .arg(QFileInfo(usb.lastingPath).fileName());
  }
  if (usb.linesKept) {
    return QStringLiteral("受信したデータは lastDownload.txt に残っています。");
  }
  return QStringLiteral(
      "受信したデータもファイルに残せませんでした。時計のデータを消去しないで下さい。");
}

/// What the user must know before the watch may be erased; null when nothing.
QString warningFor(const usbOperating& usb) {
  if (usb.runsNotStored > 0) {
    return QStringLiteral("%1件のうち%2件のランを保存できませんでした。")
               .arg(usb.runArr.size())
               .arg(usb.runsNotStored) +
           lineForKept(usb);
  }
  if (!usb.linesKept) {
    return QStringLiteral(
        "受信したデータの控えをファイルに残せませんでした。"
        "時計のデータを消去する前に、ランが表示されているか確認して下さい。");
  }
  return {};
}

/// The codes without a message box still leave a line in the status bar.
QString outcomeOf(const usbOperating& usb, qint32 code) {
  switch (code) {
    case 1:
      return usb.runsNotStored > 0 ? warningFor(usb)
                                   : QStringLiteral("ダウンロードが完了しました。");
    case 88:
      return QStringLiteral("新しいランはありませんでした。");
    case -1:
      return QStringLiteral("ランを保存できませんでした。") + lineForKept(usb);
    default:
      return {};
  }
}

}  // namespace

void TrakkoAppDelegate::downloadDataBu() {
  checkStop = false;
  showStatus(QStringLiteral("時計からダウンロードしています..."));
  progressBar->setVisible(true);
  detachThread("progress", [this] { controlProgressIndicator(); });
  detachThread("download", [this] {
    const auto atAnyEnd = qScopeGuard([this] {
      checkStop = true;
      performOnMainThread([this] { progressBar->setVisible(false); });
    });
    downloadData();
  });
}

void TrakkoAppDelegate::downloadData() {
  // Both device links of one download belong together: no other download gets the port in between.
  const auto session = std::make_shared<WatchSession>();
  auto usb = usbOperating::create(context.device, session);
  if (!usb->linkCommand()) {
    performOnMainThread([this, line = lineFor(usb->linkObstacle)] { showStatus(line); });
    return;
  }
  usb = usbOperating::create(context.device, session);
  const qint32 code = usb->getAllData();
  downloadFinished(usb, code);
}

void TrakkoAppDelegate::downloadFinished(const std::shared_ptr<usbOperating>& usb, qint32 code) {
  const QString message = code == 1 ? warningFor(*usb) : messageFor(code);
  if (!message.isNull()) {
    alertUSB(message);
  }
  performOnMainThread([this, line = outcomeOf(*usb, code)] { showStatus(line); });
  if (code != 1) {
    return;
  }
  getNewData = 1;
  mainQueue::post([this, usb] { askToEraseWatch(usb); });
  mainQueue::post([this] { startRefreshOfNewData(); });
}

void TrakkoAppDelegate::askToEraseWatch(const std::shared_ptr<usbOperating>& usb) {
  if (!context.dialogs->confirmErase(QStringLiteral("時計本体のデータを消去しますか？"))) {
    return;
  }
  usb->checkUSB = false;
  usb->deleteAllData();
}

void TrakkoAppDelegate::controlProgressIndicator() {
  constexpr double full = 100.0;
  double value = 0.0;
  showProgressValue(value);
  while (value < full) {
    value += 1.0;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (value == full) {
      value = 0.0;
    }
    if (checkStop) {
      showProgressValue(0.0);
      checkStop = false;
      return;
    }
    showProgressValue(value);
  }
}

void TrakkoAppDelegate::showProgressValue(double value) {
  // A main thread that is behind gets one update with the latest value, not a queue of old ones.
  constexpr int taken = -1;
  if (shownValue.exchange(static_cast<int>(value)) == taken) {
    performOnMainThread([this] { progressBar->setValue(shownValue.exchange(taken)); });
  }
}
