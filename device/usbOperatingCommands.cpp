// The conversation: commands, waits, result codes.

#include "base/detachThread.h"
#include "device/downloadResult.h"
#include "device/lastDownload.h"
#include "device/receiveMode.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"
#include "device/watchCommands.h"

#include <QLoggingCategory>

#include <chrono>

Q_LOGGING_CATEGORY(lcProtocol, "trakko.device.protocol", QtInfoMsg)

namespace {

constexpr qint32 allData = 1;
/// A download of no more lines than this holds no run.
constexpr qsizetype emptyDownloadLines = 2;

}  // namespace

bool usbOperating::linkCommand() {
  const Operation operation(*this);
  ensurePort();
  if (!portIsOpen()) {
    alertUSB(QStringLiteral("時計を認識出来ません、再度USB接続を確認して下さい。"));
    return false;
  }
  checkGetDataType = receiveMode::link;
  request(watchCommand::link);
  if (cancelled) {
    closeMyDevice();
    return false;
  }
  if (!getDataOK) {
    alertUSB(QStringLiteral("データが見当たりません、USBの接続を確認して下さい。"));
    closePort();
  }
  return true;
}

qint32 usbOperating::getAllData() {
  const Operation operation(*this);
  getDataType = allData;
  forgetLastDownload();
  checkGetDataType = receiveMode::download;
  ensurePort();
  downloadDataFinish = false;
  checkGetDataType = receiveMode::download;
  clearLines();
  request(watchCommand::downloadAll);
  if (!getDataOK && !cancelled) {
    checkStop = true;
    return downloadResult::noAnswer;
  }
  awaitEnd();
  if (cancelled) {
    return endCancelled();
  }
  const QDateTime end = QDateTime::currentDateTime();
  keepLines();
  if (!getDataOK || !downloadDataFinish || endless) {
    checkStop = true;
    return downloadResult::endMissed;
  }
  downloadDataFinish = false;
  return lineCount() <= emptyDownloadLines ? downloadResult::noRecords : storeLines(end);
}

void usbOperating::forgetLastDownload() {
  linesKept = false;
  lastingPath = QString();
  newRuns = 0;
  runsNotStored = 0;
  knownRuns = 0;
  strayLines = 0;
  shortBlocks = 0;
  endless = false;
}

void usbOperating::awaitEnd() {
  while (!downloadDataFinish && !cancelled) {
    checkTransmission();
    if (onWait) {
      onWait(lineCount(), getDataOK);
    }
  }
}

void usbOperating::cancel() {
  cancelled = true;
  lineLost_ = true;
  closePort();
}

/// The port may have been opened after cancel() looked for it.
qint32 usbOperating::endCancelled() {
  closeMyDevice();
  checkStop = true;
  return downloadResult::notStored;
}

qint32 usbOperating::storeLines(const QDateTime& end) {
  const qint32 result = convertChstr();
  keepDoubtfulLines(end);
  checkStop = true;
  return result;
}

/// Before anything else is done with a download, and also when its end was missed: the user may
/// have the watch erased next.
void usbOperating::keepLines() {
  const QStringList lines = receivedLines();
  if (environment_.lastDownloadPath.isEmpty() || lines.size() <= emptyDownloadLines) {
    return;
  }
  const QString error = keepDownload(environment_.lastDownloadPath, lines);
  linesKept = error.isNull();
  if (!linesKept) {
    qCCritical(lcProtocol, "download not kept in %s: %s",
               qUtf8Printable(environment_.lastDownloadPath), qUtf8Printable(error));
  }
}

/// Once the watch is erased, what was not stored, or not received whole, exists only in the kept
/// lines: the next download must not replace them. The same goes for several new runs among known
/// ones, whose points go by their place among the new.
void usbOperating::keepDoubtfulLines(const QDateTime& end) {
  const bool mixed = downloadResult::mixesPoints(knownRuns, newRuns);
  if (runsNotStored == 0 && shortBlocks == 0 && strayLines == 0 && !mixed) {
    return;
  }
  qCCritical(lcProtocol, "%lld of %lld runs not stored, %d blocks short, %lld lines stray",
             static_cast<long long>(runsNotStored), static_cast<long long>(newRuns),
             shortBlocks.load(), static_cast<long long>(strayLines));
  if (environment_.lastDownloadPath.isEmpty()) {
    return;
  }
  const LastingCopy copy = keepForGood(environment_.lastDownloadPath, receivedLines(), end);
  lastingPath = copy.path;
  if (copy.path.isNull()) {
    qCCritical(lcProtocol, "no lasting copy of the download: %s", qUtf8Printable(copy.error));
  }
}

void usbOperating::deleteAllData() {
  const Operation operation(*this);
  eraseSent = false;
  ensurePort();
  if (portIsOpen()) {
    checkGetDataType = receiveMode::erase;
    eraseSent = write(commandBytes(watchCommand::erase));
  }
}

void usbOperating::lostLink() {
  const Operation operation(*this);
  if (portIsOpen()) {
    checkGetDataType = receiveMode::disconnect;
    writeString(watchCommand::disconnect);
  }
}

/// Sends a command and waits for a block. The flag is cleared before the command goes out: a watch
/// may answer before this thread runs again.
void usbOperating::request(const QString& command) {
  getDataOK = false;
  writeString(command);
  awaitBlock();
}

void usbOperating::checkTransmission() {
  getDataOK = false;
  awaitBlock();
}

void usbOperating::awaitBlock() {
  using std::chrono::steady_clock;
  const std::chrono::duration<double> limit(environment_.answerLimit);
  const auto start = steady_clock::now();
  while (!getDataOK && !cancelled) {
    if (steady_clock::now() - start > limit) {
      downloadFail = true;
      return;
    }
    if (readThreadRunning) {
      std::this_thread::yield();  // never starve the receive thread on a small machine
    } else {
      // No block can come any more. An unplugged download waits like this until the program ends;
      // it need not keep a processor busy.
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

bool usbOperating::write(std::span<const std::byte> bytes) {
  const std::shared_ptr<SerialPort> port = portIsOpen() ? currentPort() : nullptr;
  return port && port->write(bytes);
}

void usbOperating::writeString(const QString& hex) {
  write(commandBytes(hex));
}

void usbOperating::writeByte(const quint8* byte) {
  write(std::as_bytes(std::span(byte, 1)));
}

void usbOperating::threadGetAllData() {
  getAllDataOK = false;
  detachThread("watch-download", [self = shared_from_this()] { self->getAllData(); });
}

void usbOperating::tempSendThread() {
  detachThread("watch-send", [self = shared_from_this()] { self->SendCommandStr(); });
}

void usbOperating::SendCommandStr() {
  const Operation operation(*this);
  if (getDataType != allData) {
    writeString(QString());
    return;
  }
  checkGetDataType = receiveMode::download;
  getAllDataOK = false;
  downloadDataFinish = false;
  clearLines();
  writeString(watchCommand::downloadAll);
}

void usbOperating::DataFinishCheck() {
  if (lineCount() <= emptyDownloadLines) {
    alertUSB(QStringLiteral("データがありません。"));
    return;
  }
  convertChstr();
  checkStop = true;
}
